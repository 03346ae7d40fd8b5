# SPDX-License-Identifier: Apache-2.0
# Sourced by the scripts. install_packages GROUP... makes sure that the packages of these groups
# (scripts/packages) are there, installing what is missing as root or through sudo.

install_packages() {
    local list missing=() package installer=()
    list="$(dirname "${BASH_SOURCE[0]}")/../packages"
    for package in $(awk -v groups=" $* " '!/^#/ && index(groups, " " $1 " ") { print $2 }' "$list" | sort -u); do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null && { sudo -n true 2>/dev/null || [ -t 0 ]; }; then
            installer=(sudo)
        else
            echo "These packages are missing, and this user may not install them: ${missing[*]}" >&2
            echo "Ask an administrator to run: apt-get install ${missing[*]}" >&2
            return 1
        fi
    fi
    echo "Installing: ${missing[*]}"
    "${installer[@]}" apt-get update -qq
    "${installer[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

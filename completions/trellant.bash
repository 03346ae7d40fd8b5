# SPDX-License-Identifier: Apache-2.0
# Completions of trellant for bash. They need nothing but bash itself.

# The words of $1 that begin with $2.
_trellant_words() {
    local IFS=$' \t\n'
    COMPREPLY=($(compgen -W "$1" -- "$2"))
}

# Names of folders, and of files whose name ends as the pattern $1 says, that begin with $2. The
# replies are file names from here on: bash quotes them and puts a slash after folders.
_trellant_paths() {
    local name
    compopt -o filenames 2>/dev/null
    while IFS= read -r name; do
        COMPREPLY+=("$name")
    done < <(compgen -d -- "$2")
    while IFS= read -r name; do
        # Folders are there already.
        [[ ! -d $name && $name == $1 ]] && COMPREPLY+=("$name")
    done < <(compgen -f -- "$2")
}

_trellant() {
    local anywhere="-h --help -q --quiet -v --verbose"
    local lossy="--media --fail-on"
    local output="-o --output --force"
    local commands="info list extract export render check page peaks scan catalogue dump validate"
    local profiles="post film broadcast-25 music archive"
    local rules="media-missing media-ambiguous media-linked media-past-end media-unused loss-dropped loss-sound"
    rules+=" effects nesting omf-version file-size compositions rate-expected rate-mixed depth-expected"
    rules+=" depth-mixed channels-mono handles start-timecode frame-rate rate-label off-frame overlap"
    rules+=" tiny-clip duplicate pairs track-names muted gain-range names-odd pop-head silent clipped"
    local formats="aaf otio otioz reaper dawproject markers"
    # In any case: such files come from systems that do not tell the cases apart.
    local omf='*.[oO][mM][fF]' omfi='*.[oO][mM][fF][iI]' json='*.[jJ][sS][oO][nN]'
    local audio='@(*.[wW][aA][vV]|*.[aA][iI][fF]|*.[aA][iI][fF][fFcC])'
    local current="${COMP_WORDS[COMP_CWORD]}" previous="" command="" word
    local questions="unreadable missing-media duplicate-files duplicate-audio programs rates plays saved" verb=""
    local -i index places=0
    COMPREPLY=()

    # bash makes "=" a word of its own.
    [[ $current == = ]] && current=""
    for ((index = 1; index < COMP_CWORD; index++)); do
        word="${COMP_WORDS[index]}"
        [[ $word == = ]] && continue
        case $previous in
            --media | --fail-on | --to | --output | -o | --object | --path | --format | --media-mode | --names | \
                --rate | --name | --language | --samples-per-pair | --bits | --profile | --explain | \
                --preview-size | --media-folder | --list | --shard | --jobs | --retry | --time-limit | \
                --memory-limit | --sql | --limit | --store | --bag | --organization | --identifier)
                previous=""
                continue
                ;;
        esac
        previous="$word"
        case $word in
            -?*) ;;
            *)
                if [[ -z $command ]]; then
                    command="$word"
                else
                    ((places == 0)) && verb="$word"
                    places+=1
                fi
                ;;
        esac
    done

    case $previous in
        --media | --to | --media-folder | --store | --bag)
            _trellant_paths '' "$current"
            return
            ;;
        --fail-on)
            if [[ $command == check ]]; then
                _trellant_words "error warning info" "$current"
            else
                _trellant_words "missing render any" "$current"
            fi
            return
            ;;
        --profile)
            _trellant_words "$profiles" "$current"
            _trellant_paths "$json" "$current"
            return
            ;;
        --explain)
            _trellant_words "$rules" "$current"
            return
            ;;
        --retry)
            _trellant_words "failed" "$current"
            return
            ;;
        -o | --output | --list)
            _trellant_paths '*' "$current"
            return
            ;;
        --format)
            if [[ $command == render ]]; then
                _trellant_words "wav24 wav32f" "$current"
            else
                _trellant_words "$formats" "$current"
            fi
            return
            ;;
        --media-mode)
            _trellant_words "copy link embed" "$current"
            return
            ;;
        --names)
            _trellant_words "master source" "$current"
            return
            ;;
        --language)
            _trellant_words "en de" "$current"
            return
            ;;
        --bits)
            _trellant_words "8 16" "$current"
            return
            ;;
        --object | --path | --rate | --name | --samples-per-pair | --preview-size | --handles | --from | --until | --shard | --jobs | --time-limit | --memory-limit | --sql | --limit | --organization | --identifier)
            return
            ;;
    esac

    if [[ -z $command ]]; then
        if [[ $current == -* ]]; then
            _trellant_words "$anywhere --version" "$current"
        else
            _trellant_words "$commands help" "$current"
        fi
        return
    fi
    if [[ $current == -* ]]; then
        case $command in
            info) _trellant_words "$anywhere --json $lossy $output" "$current" ;;
            list) _trellant_words "$anywhere --csv --json $lossy $output" "$current" ;;
            extract) _trellant_words "$anywhere --to $lossy --wav --names --force --absolute --json --salvage --store --references --bag --organization --identifier" "$current" ;;
            export) _trellant_words "$anywhere --to --format $lossy --media-mode --names --rate --name --no-markers --force --json" "$current" ;;
            render) _trellant_words "$anywhere --to --tracks --mix --clips --raw --handles $lossy --from --until --format --resample --force --json" "$current" ;;
            check) _trellant_words "$anywhere --profile --media --recursive --audio --fail-on --json --junit --sarif $output --list-rules --explain" "$current" ;;
            page) _trellant_words "$anywhere --language --profile --preview-size --media-folder --no-audio $lossy $output" "$current" ;;
            peaks) _trellant_words "$anywhere --samples-per-pair --bits --json $output" "$current" ;;
            scan) _trellant_words "$anywhere -o --output --list --shard --jobs --no-hash --retry --refresh --time-limit --memory-limit --profile --strict" "$current" ;;
            catalogue) _trellant_words "$anywhere --sql --limit --csv --json $output" "$current" ;;
            dump) _trellant_words "$anywhere --toc --object --path --all --json" "$current" ;;
            validate) _trellant_words "$anywhere --json" "$current" ;;
        esac
        return
    fi
    case $command in
        catalogue)
            if ((places == 0)); then
                _trellant_words "build query stats" "$current"
            elif [[ $verb == query ]] && ((places == 2)); then
                _trellant_words "$questions" "$current"
            else
                _trellant_paths '*' "$current"
            fi
            ;;
        list)
            if ((places == 0)); then
                _trellant_words "tracks clips sources losses" "$current"
            else
                _trellant_paths "@($omf|$omfi)" "$current"
            fi
            ;;
        info | extract | export | render | check | page) _trellant_paths "@($omf|$omfi)" "$current" ;;
        peaks) _trellant_paths "$audio" "$current" ;;
        dump | scan) _trellant_paths '*' "$current" ;;
        help) ((places == 0)) && _trellant_words "$commands" "$current" ;;
        validate) _trellant_paths "$json" "$current" ;;
    esac
}

complete -F _trellant trellant

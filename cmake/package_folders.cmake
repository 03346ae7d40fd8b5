# SPDX-License-Identifier: Apache-2.0
# Folders in packages are open to everybody, whatever the mask of whoever packs. Run by CPack when all
# files are in place.
file(CHMOD_RECURSE ${CPACK_TEMPORARY_DIRECTORY} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

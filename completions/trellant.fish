# SPDX-License-Identifier: Apache-2.0
# Completions of trellant for fish.

# Folders, and files whose name ends in a dot and what the pattern says, in any case.
function __trellant_files
    __fish_complete_path (commandline --current-token) | string match --entire --ignore-case --regex "(/|\.($argv[1]))(\t|\$)"
end

set -l commands info list extract dump validate
set -l contents tracks clips sources losses

complete -c trellant -f

complete -c trellant -s h -l help -d 'Show a page of help'
complete -c trellant -s q -l quiet -d 'Say nothing but errors'
complete -c trellant -s v -l verbose -d 'Say more, for finding a fault'
complete -c trellant -n "not __fish_seen_subcommand_from $commands" -l version -d 'Show the version'

complete -c trellant -n "not __fish_seen_subcommand_from $commands" -a info -d 'Show what is in OMF files, one screen each'
complete -c trellant -n "not __fish_seen_subcommand_from $commands" -a list -d 'List the tracks, clips, audio files or losses of an OMF file'
complete -c trellant -n "not __fish_seen_subcommand_from $commands" -a extract -d 'Take the audio out of an OMF file'
complete -c trellant -n "not __fish_seen_subcommand_from $commands" -a dump -d 'Show the container behind an OMF file, for engineers'
complete -c trellant -n "not __fish_seen_subcommand_from $commands" -a validate -d 'Check timelines and results that were written as JSON'

complete -c trellant -n '__fish_seen_subcommand_from info' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__fish_seen_subcommand_from info' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__fish_seen_subcommand_from info' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__fish_seen_subcommand_from info' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__fish_seen_subcommand_from info' -l force -d 'Replace an existing file'
complete -c trellant -n '__fish_seen_subcommand_from info' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__fish_seen_subcommand_from list' -l csv -d 'Write comma-separated values, for sheets'
complete -c trellant -n '__fish_seen_subcommand_from list' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__fish_seen_subcommand_from list' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__fish_seen_subcommand_from list' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__fish_seen_subcommand_from list' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__fish_seen_subcommand_from list' -l force -d 'Replace an existing file'
complete -c trellant -n "__fish_seen_subcommand_from list; and not __fish_seen_subcommand_from $contents" -a "$contents"
complete -c trellant -n "__fish_seen_subcommand_from list; and __fish_seen_subcommand_from $contents" -a '(__trellant_files "omfi?")'

complete -c trellant -n '__fish_seen_subcommand_from extract' -l to -x -a '(__fish_complete_directories)' -d 'Write into this folder'
complete -c trellant -n '__fish_seen_subcommand_from extract' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__fish_seen_subcommand_from extract' -l wav -d 'Write AIFF audio as WAVE'
complete -c trellant -n '__fish_seen_subcommand_from extract' -l force -d 'Replace existing files'
complete -c trellant -n '__fish_seen_subcommand_from extract' -l json -d 'Write the summary as one JSON object'
complete -c trellant -n '__fish_seen_subcommand_from extract' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__fish_seen_subcommand_from extract' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__fish_seen_subcommand_from dump' -l toc -d 'Show every entry of the table'
complete -c trellant -n '__fish_seen_subcommand_from dump' -l object -x -d 'Show one object with its properties'
complete -c trellant -n '__fish_seen_subcommand_from dump' -l path -x -d 'Show the place that a loss names'
complete -c trellant -n '__fish_seen_subcommand_from dump' -l all -d 'Show everything, without bounds'
complete -c trellant -n '__fish_seen_subcommand_from dump' -F

complete -c trellant -n '__fish_seen_subcommand_from validate' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__fish_seen_subcommand_from validate' -a '(__trellant_files json)'

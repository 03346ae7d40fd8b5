# SPDX-License-Identifier: Apache-2.0
# Completions of trellant for fish.

# Folders, and files whose name ends in a dot and what the pattern says, in any case. What a group
# captures would be offered too.
function __trellant_files
    __fish_complete_path (commandline --current-token) | string match --entire --ignore-case --regex "(?:/|\.(?:$argv[1]))(?:\t|\$)"
end

# The words before the cursor that are no options: the command first.
function __trellant_words
    string match --invert -- '-*' (commandline --tokenize --cut-at-cursor --current-process)[2..-1]
end

# Whether the command is the one that is named; without a name, whether there is none yet.
function __trellant_in
    set -l words (__trellant_words)
    test "$words[1]" = "$argv[1]"
end

set -l commands info list extract export render check page peaks scan catalogue dump validate
set -l contents tracks clips sources losses

complete -c trellant -f

complete -c trellant -s h -l help -d 'Show a page of help'
complete -c trellant -s q -l quiet -d 'Say nothing but errors'
complete -c trellant -s v -l verbose -d 'Say more, for finding a fault'
complete -c trellant -n __trellant_in -l version -d 'Show the version'

complete -c trellant -n __trellant_in -a info -d 'Show what is in OMF files, one screen each'
complete -c trellant -n __trellant_in -a list -d 'List the tracks, clips, audio files or losses of OMF files'
complete -c trellant -n __trellant_in -a extract -d 'Take the audio out of OMF files'
complete -c trellant -n __trellant_in -a export -d 'Write sessions for the tools of today'
complete -c trellant -n __trellant_in -a render -d 'Render tracks, the mix or clips as Broadcast WAVE files'
complete -c trellant -n __trellant_in -a check -d 'Hold OMF files against published rules of delivery'
complete -c trellant -n __trellant_in -a page -d 'Write the timeline as a page for any browser'
complete -c trellant -n __trellant_in -a peaks -d 'Write waveforms of audio files, for tools that draw them'
complete -c trellant -n __trellant_in -a scan -d 'Look into every OMF file of an archive'
complete -c trellant -n __trellant_in -a catalogue -d 'Keep the rows of scans in one SQLite file and ask it'
complete -c trellant -n __trellant_in -a dump -d 'Show the containers behind OMF files, for engineers'
complete -c trellant -n __trellant_in -a validate -d 'Check timelines and results that were written as JSON'
complete -c trellant -n __trellant_in -a help -d 'Show the page of a command'

complete -c trellant -n '__trellant_in info' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__trellant_in info' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in info' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__trellant_in info' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__trellant_in info' -l force -d 'Replace an existing file'
complete -c trellant -n '__trellant_in info' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__trellant_in list' -l csv -d 'Write comma-separated values, for sheets'
complete -c trellant -n '__trellant_in list' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__trellant_in list' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in list' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__trellant_in list' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__trellant_in list' -l force -d 'Replace an existing file'
complete -c trellant -n "__trellant_in list; and not __fish_seen_subcommand_from $contents" -a "$contents"
complete -c trellant -n "__trellant_in list; and __fish_seen_subcommand_from $contents" -a '(__trellant_files "omfi?")'

complete -c trellant -n '__trellant_in extract' -l to -x -a '(__fish_complete_directories)' -d 'Write into this folder'
complete -c trellant -n '__trellant_in extract' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in extract' -l wav -d 'Write AIFF audio as WAVE'
complete -c trellant -n '__trellant_in extract' -l force -d 'Replace existing files'
complete -c trellant -n '__trellant_in extract' -l names -x -a 'master source' -d 'Name files after master mobs where that says more, or after sources'
complete -c trellant -n '__trellant_in extract' -l absolute -d 'Name files in timeline.json by their whole paths'
complete -c trellant -n '__trellant_in extract' -l salvage -d 'Take out what audio there is of files that cannot be read'
complete -c trellant -n '__trellant_in extract' -l store -x -a '(__fish_complete_directories)' -d 'Keep equal audio once in this folder'
complete -c trellant -n '__trellant_in extract' -l references -d 'Name the audio in the store, without links to it'
complete -c trellant -n '__trellant_in extract' -l bag -x -a '(__fish_complete_directories)' -d 'Write a bag for an archive into this folder'
complete -c trellant -n '__trellant_in extract' -l organization -x -d 'Say who the bag is from'
complete -c trellant -n '__trellant_in extract' -l identifier -x -d 'Say what the bag is called elsewhere'
complete -c trellant -n '__trellant_in extract' -l json -d 'Write one JSON object a line for each file'
complete -c trellant -n '__trellant_in extract' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__trellant_in extract' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__trellant_in export' -l to -x -a '(__fish_complete_directories)' -d 'Write into this folder'
complete -c trellant -n '__trellant_in export' -l format -x -a 'aaf otio otioz reaper dawproject markers' -d 'Write this kind of session'
complete -c trellant -n '__trellant_in export' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in export' -l media-mode -x -a 'copy link embed' -d 'Put the audio beside the session, leave it, or put it inside'
complete -c trellant -n '__trellant_in export' -l names -x -a 'master source' -d 'Name files after master mobs where that says more, or after sources'
complete -c trellant -n '__trellant_in export' -l rate -x -d 'Write so many samples in a second'
complete -c trellant -n '__trellant_in export' -l name -x -d 'Call the session this'
complete -c trellant -n '__trellant_in export' -l no-markers -d 'Put no markers where something was lost'
complete -c trellant -n '__trellant_in export' -l force -d 'Replace existing files'
complete -c trellant -n '__trellant_in export' -l json -d 'Write one JSON object a line for each file'
complete -c trellant -n '__trellant_in export' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__trellant_in export' -a '(__trellant_files "omfi?")'
complete -c trellant -n '__trellant_in render' -l to -x -a '(__fish_complete_directories)' -d 'Write into this folder'
complete -c trellant -n '__trellant_in render' -l tracks -d 'Write one file a track'
complete -c trellant -n '__trellant_in render' -l mix -d 'Write one stereo file of what is heard'
complete -c trellant -n '__trellant_in render' -l clips -d 'Write one file a clip'
complete -c trellant -n '__trellant_in render' -l raw -d 'Edits only, without gains and fades'
complete -c trellant -n '__trellant_in render' -l handles -x -d 'Take so many seconds before and behind clips'
complete -c trellant -n '__trellant_in render' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in render' -l from -x -d 'Begin at this timecode'
complete -c trellant -n '__trellant_in render' -l until -x -d 'End before this timecode'
complete -c trellant -n '__trellant_in render' -l format -x -a 'wav24 wav32f' -d 'Write samples of this kind'
complete -c trellant -n '__trellant_in render' -l resample -d 'Convert audio of other sample rates'
complete -c trellant -n '__trellant_in render' -l force -d 'Replace existing files'
complete -c trellant -n '__trellant_in render' -l json -d 'Write one JSON object a line for each file'
complete -c trellant -n '__trellant_in render' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__trellant_in render' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__trellant_in check' -l profile -x -a 'post film broadcast-25 music archive (__trellant_files json)' -d 'Take these rules'
complete -c trellant -n '__trellant_in check' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in check' -l recursive -d 'Look into the folders within folders too'
complete -c trellant -n '__trellant_in check' -l audio -d 'Read all audio too'
complete -c trellant -n '__trellant_in check' -l fail-on -x -a 'error warning info' -d 'End with status 3 at this weight and above'
complete -c trellant -n '__trellant_in check' -l json -d 'Write one JSON object a line for each file'
complete -c trellant -n '__trellant_in check' -l junit -d 'Write test results'
complete -c trellant -n '__trellant_in check' -l sarif -d 'Write SARIF 2.1.0'
complete -c trellant -n '__trellant_in check' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__trellant_in check' -l force -d 'Replace an existing file'
complete -c trellant -n '__trellant_in check' -l list-rules -d 'Show the rules'
complete -c trellant -n '__trellant_in check' -l explain -x -a 'media-missing media-ambiguous media-linked media-past-end media-unused loss-dropped loss-sound effects nesting omf-version file-size compositions rate-expected rate-mixed depth-expected depth-mixed channels-mono handles start-timecode frame-rate rate-label off-frame overlap tiny-clip duplicate pairs track-names muted gain-range names-odd pop-head silent clipped' -d 'Show what a rule is'
complete -c trellant -n '__trellant_in check' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__trellant_in page' -s o -l output -r -F -d 'Write to this file, or of several files to this folder'
complete -c trellant -n '__trellant_in page' -l media -x -a '(__fish_complete_directories)' -d 'Look for external audio files here and below'
complete -c trellant -n '__trellant_in page' -l language -x -a 'en de' -d 'Write English or German'
complete -c trellant -n '__trellant_in page' -l profile -x -a 'post film broadcast-25 music archive (__trellant_files json)' -d 'Go by these rules'
complete -c trellant -n '__trellant_in page' -l preview-size -x -d 'Hold so many megabytes of sound in a page'
complete -c trellant -n '__trellant_in page' -l media-folder -x -a '(__fish_complete_directories)' -d 'Link to the audio files that extract wrote here'
complete -c trellant -n '__trellant_in page' -l no-audio -d 'Do not listen to the audio'
complete -c trellant -n '__trellant_in page' -l force -d 'Replace existing files'
complete -c trellant -n '__trellant_in page' -l fail-on -x -a 'missing render any' -d 'End with status 3 when there is such a loss'
complete -c trellant -n '__trellant_in page' -a '(__trellant_files "omfi?")'

complete -c trellant -n '__trellant_in peaks' -l samples-per-pair -x -d 'Take a lowest and a highest value of so many samples'
complete -c trellant -n '__trellant_in peaks' -l bits -x -a '8 16' -d 'Write values of this size'
complete -c trellant -n '__trellant_in peaks' -l json -d 'Write one JSON object a line for each file'
complete -c trellant -n '__trellant_in peaks' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__trellant_in peaks' -l force -d 'Replace an existing file'
complete -c trellant -n '__trellant_in peaks' -a '(__trellant_files "wav|aif[fc]?")'

complete -c trellant -n '__trellant_in scan' -s o -l output -r -F -d 'Add the rows to this file'
complete -c trellant -n '__trellant_in scan' -l list -r -F -d 'Take paths from the lines of this file'
complete -c trellant -n '__trellant_in scan' -l shard -x -d 'Only part I of N parts'
complete -c trellant -n '__trellant_in scan' -l jobs -x -d 'Read so many files at once'
complete -c trellant -n '__trellant_in scan' -l no-hash -d 'No checksums'
complete -c trellant -n '__trellant_in scan' -l retry -x -a failed -d 'Read files again'
complete -c trellant -n '__trellant_in scan' -l refresh -d 'Read all files again'
complete -c trellant -n '__trellant_in scan' -l time-limit -x -d 'Take at most so long for a file'
complete -c trellant -n '__trellant_in scan' -l memory-limit -x -d 'Take at most so much memory for a file'
complete -c trellant -n '__trellant_in scan' -l profile -r -F -a 'post film broadcast-25 music archive' -d 'Check by these rules'
complete -c trellant -n '__trellant_in scan' -l strict -d 'End with status 2 when a file could not be read'
complete -c trellant -n '__trellant_in scan' -F

complete -c trellant -n '__trellant_in catalogue' -a 'build query stats'
complete -c trellant -n '__trellant_in catalogue' -l sql -x -d 'Ask this'
complete -c trellant -n '__trellant_in catalogue' -l limit -x -d 'Show so many rows'
complete -c trellant -n '__trellant_in catalogue' -l csv -d 'Write comma-separated values'
complete -c trellant -n '__trellant_in catalogue' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__trellant_in catalogue' -s o -l output -r -F -d 'Write to this file'
complete -c trellant -n '__trellant_in catalogue' -l force -d 'Replace an existing file'
complete -c trellant -n '__trellant_in catalogue; and contains -- query (__trellant_words)' -a 'unreadable missing-media duplicate-files duplicate-audio programs rates plays saved'
complete -c trellant -n '__trellant_in catalogue' -F

complete -c trellant -n '__trellant_in dump' -l toc -d 'Show every entry of the table'
complete -c trellant -n '__trellant_in dump' -l object -x -d 'Show one object with its properties'
complete -c trellant -n '__trellant_in dump' -l path -x -d 'Show the place that a loss names'
complete -c trellant -n '__trellant_in dump' -l all -d 'Show everything, without bounds'
complete -c trellant -n '__trellant_in dump' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__trellant_in dump' -F

complete -c trellant -n '__trellant_in validate' -l json -d 'Write one JSON object a line'
complete -c trellant -n '__trellant_in validate' -a '(__trellant_files json)'

complete -c trellant -n "__trellant_in help; and not __fish_seen_subcommand_from $commands" -a "$commands"

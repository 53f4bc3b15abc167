# Completion of tavinstall for fish.

set -l commands run status attach stop rehearse check log help
complete -c tavinstall -f
complete -c tavinstall -s h -l help -d 'Show this help'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -l version -d 'Show the version'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a run -d 'Install the data of an installer package'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a status -d 'Tell what a running installation does'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a attach -d 'Show a running installation and answer its prompts'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a stop -d 'Stop a running installation after the current file'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a rehearse -d 'Install a set in a sandbox and verify the result'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a check -d 'Check an installer set and show what the page would do with it'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a log -d 'Show what an installation log records, run by run'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a help -d 'Show the help of a command, or all exit statuses'
complete -c tavinstall -n '__fish_seen_subcommand_from help' -x -a 'run status attach stop rehearse check log exit-status' -d 'A topic'

set -l products 'Tessaphon Lumaweave Bassoria TemporaQX'
complete -c tavinstall -n '__fish_seen_subcommand_from run rehearse check' -l product -x -a "$products" -d 'The product'
complete -c tavinstall -n '__fish_seen_subcommand_from run rehearse check' -l install-type -x -a 'Lite Full' -d 'The edition, if there is a choice'
complete -c tavinstall -n '__fish_seen_subcommand_from run rehearse' -l ui -x -a 'json plain quiet terminal' -d 'Frontend'
complete -c tavinstall -n '__fish_seen_subcommand_from status' -l json -d 'Print it as JSON'
complete -c tavinstall -n '__fish_seen_subcommand_from attach' -l ui -x -a 'plain terminal' -d 'Frontend'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse check' -l installed -x -a '(__fish_complete_directories)' -d 'What the user has installed'
complete -c tavinstall -n '__fish_seen_subcommand_from check log' -l format -x -a 'text json' -d 'Output format'

complete -c tavinstall -n '__fish_seen_subcommand_from run' -l package -r -F -d 'The installer package'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l bundle -x -a '(__fish_complete_directories)' -d 'The plug-in bundle'
complete -c tavinstall -n '__fish_seen_subcommand_from run attach' -l no-notify -d 'No bell, window title or notification'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l summary -r -F -d 'Write the run summary to this file'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l unattended -d 'Never ask; fail at once if anything is missing'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l disc-timeout -x -d 'Unattended: wait so many seconds for each disc'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l optional-discs -x -a 'skip wait' -d 'Unattended: what to do about optional discs'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l no-preinstall -d 'Use the files that a pre-install step has written to /tmp'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l trusted -d 'Install even if other users can change the package'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l without-attributes -d 'Install one disc even if there is no attributes file'

complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l allow-outside -d 'Rehearse a set whose links or paths lead out of its folder'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l late -x -d 'Report each disc as missing N times'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l keep -x -a '(__fish_complete_directories)' -d 'Keep the installed files and the log in this new folder'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l report -r -F -d 'Also write the report to this file, as JSON'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse check' -a '(__fish_complete_directories)'

complete -c tavinstall -n '__fish_seen_subcommand_from log' -l last -d 'Show only the last run'
complete -c tavinstall -n '__fish_seen_subcommand_from log' -l check -d 'Tell by the exit status how the last run ended'
complete -c tavinstall -n '__fish_seen_subcommand_from log' -l bundle -r -F -d 'Put what support needs into this new ZIP file'
complete -c tavinstall -n '__fish_seen_subcommand_from log' -F

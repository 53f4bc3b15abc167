# Completion of tavinstall for fish.

set -l commands run rehearse check log
complete -c tavinstall -f
complete -c tavinstall -s h -l help -d 'Say what there is'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -l version -d 'Say which version this is'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a run -d 'Install: show the page and see it through'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a rehearse -d 'Install a whole set in a sandbox'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a check -d 'Say what is wrong with an installer set'
complete -c tavinstall -n "not __fish_seen_subcommand_from $commands" -a log -d 'Say what an installation log tells'

set -l products 'Tessaphon Lumaweave Bassoria TemporaQX'
complete -c tavinstall -n '__fish_seen_subcommand_from run rehearse check' -l product -x -a "$products" -d 'The product'
complete -c tavinstall -n '__fish_seen_subcommand_from run rehearse check' -l install-type -x -a 'Lite Full' -d 'The edition, where there is a choice'
complete -c tavinstall -n '__fish_seen_subcommand_from run rehearse' -l ui -x -a 'json plain quiet terminal' -d 'How the page is shown'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse check' -l installed -x -a '(__fish_complete_directories)' -d 'What the user has'
complete -c tavinstall -n '__fish_seen_subcommand_from check log' -l format -x -a 'text json' -d 'How to say it'

complete -c tavinstall -n '__fish_seen_subcommand_from run' -l package -r -F -d 'The installer package'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l bundle -x -a '(__fish_complete_directories)' -d 'The plug-in bundle'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l summary -r -F -d 'Write what happened to this file'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l no-preinstall -d 'Use the files in /tmp as they are'
complete -c tavinstall -n '__fish_seen_subcommand_from run' -l trusted -d 'Install although others can change what the page goes by'

complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l late -x -d 'How often each disc is asked for in vain'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l keep -x -a '(__fish_complete_directories)' -d 'Keep what was installed in this new folder'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse' -l report -r -F -d 'Write the report to this file too'
complete -c tavinstall -n '__fish_seen_subcommand_from rehearse check' -a '(__fish_complete_directories)'

complete -c tavinstall -n '__fish_seen_subcommand_from log' -l last -d 'Only the last run'
complete -c tavinstall -n '__fish_seen_subcommand_from log' -F

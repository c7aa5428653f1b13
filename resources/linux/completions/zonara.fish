# fish completion for zonara

set -l commands line watch list at add rename pin unpin remove move search format hours
set -l formats labelTime24 labelTime12 timeOnly24 labelDayTime24 labelTime24Seconds

# The saved cities' names, as "zonara list" prints them.
function __zonara_saved_cities
    set -l program (commandline -opc)[1]
    $program list 2>/dev/null | awk -F '  +' 'NR > 1 && $1 ~ /^[0-9]+$/ { print $2 }'
end

# Time zones for the word typed so far, from zonara's own search; a city's
# name finds its zone too.
function __zonara_time_zones
    set -l program (commandline -opc)[1]
    $program search (commandline -ct) --json 2>/dev/null |
        string match -ar '"identifier":"[^"]*"' | string split -f4 '"' | sort -u
end

complete -c zonara -f
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -l settings -d 'Open the settings'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -l panel -d 'Open the panel at the pointer'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -s h -l help -d 'Show the commands'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -s v -l version -d 'Show the version'

complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a line -d 'Print the tray line of the pinned cities'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a watch -d 'Print the line again at every tick'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a list -d 'List the saved cities'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a at -d 'Every saved city at a time in one city'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a add -d 'Add a city by its time zone'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a rename -d 'Set or clear a nickname'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a pin -d 'Show a city in the tray line'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a unpin -d 'Stop showing a city in the tray line'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a remove -d 'Remove a city'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a move -d 'Reorder a city'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a search -d 'Find cities and time zones to add'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a format -d 'Print or set the line format'
complete -c zonara -n "not __fish_seen_subcommand_from $commands" -a hours -d 'Print or set the working hours'

complete -c zonara -n "__fish_seen_subcommand_from line watch" -l format -x -a "$formats" -d 'Line format'
complete -c zonara -n "__fish_seen_subcommand_from line" -l at -x -d 'ISO 8601 date and time with an offset'
complete -c zonara -n "__fish_seen_subcommand_from line" -l genmon -d "Output for Xfce's Generic Monitor"
complete -c zonara -n "__fish_seen_subcommand_from watch list at search" -l json -d 'Print JSON'
complete -c zonara -n "__fish_seen_subcommand_from list" -l at -x -d 'A time and a city, such as "15:00 Tokyo"'
complete -c zonara -n "__fish_seen_subcommand_from list at" -l date -x -d 'The date in that city, YYYY-MM-DD'
complete -c zonara -n "__fish_seen_subcommand_from add" -l nickname -x -d Nickname
complete -c zonara -n "__fish_seen_subcommand_from add" -l pin -d 'Pin the city'
complete -c zonara -n "__fish_seen_subcommand_from add; and __fish_is_nth_token 2" -a "(__zonara_time_zones)"
complete -c zonara -n "__fish_seen_subcommand_from rename pin unpin remove move; and __fish_is_nth_token 2" -a "(__zonara_saved_cities)"
complete -c zonara -n "__fish_seen_subcommand_from move" -l before -x -a "(__zonara_saved_cities)" -d 'In front of'
complete -c zonara -n "__fish_seen_subcommand_from move" -l to-end -d 'To the end'
complete -c zonara -n "__fish_seen_subcommand_from format; and __fish_is_nth_token 2" -a "$formats"
complete -c zonara -n "__fish_seen_subcommand_from hours; and __fish_is_nth_token 2" -a "09:00-18:00 off"

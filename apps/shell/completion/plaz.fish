# Completion of plaz for fish.

function __plaz_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    for line in (command $words[1] complete $words "$current" 2>/dev/null)
        switch $line
            case :files
                __fish_complete_path "$current"
            case :directories
                __fish_complete_directories "$current" ''
            case ''
            case '*'
                echo $line
        end
    end
end

complete -c plaz -f -k -a '(__plaz_complete)'

#!/bin/sh
# Makes plain text of the links of documents that lead to nothing where the documents are installed: to sources,
# tests and manual pages, which stand elsewhere or nowhere there. What a link led to stays in brackets.
#
#   package/unlink.sh FOLDER
set -eu

find "$1" -name '*.md' | while IFS= read -r document; do
    awk -v folder="${document%/*}" '
    function leads_nowhere(target) {
        sub(/#.*/, "", target)
        if (target == "" || target ~ /^[a-z]+:/) return 0
        gsub(/'\''/, "", target)
        return system("test -e '\''" folder "/" target "'\''") != 0
    }
    {
        line = ""
        while (match($0, /\[[^][]*\]\([^()]*\)/)) {
            link = substr($0, RSTART, RLENGTH)
            line = line substr($0, 1, RSTART - 1)
            $0 = substr($0, RSTART + RLENGTH)
            split(link, part, /\]\(/)
            text = substr(part[1], 2)
            target = substr(part[2], 1, length(part[2]) - 1)
            if (leads_nowhere(target)) {
                name = target
                sub(/\/$/, "", name)
                sub(/.*\//, "", name)
                link = index(text, name) ? text : text " (" name ")"
            }
            line = line link
        }
        print line $0
    }' "$document" >"$document.new"
    mv "$document.new" "$document"
done

#!/bin/sh
# Fails, and says which, when a document below the folder links to something that is not there.
#
#   package/check-links.sh FOLDER
set -eu

[ -n "$(find "$1" -name '*.md')" ] || {
    echo "check-links.sh: no documents in $1" >&2
    exit 1
}
dead=$(find "$1" -name '*.md' | while IFS= read -r document; do
    grep -o ']([^()]*)' "$document" | sed 's/^](//; s/)$//; s/#.*//' | sort -u | while IFS= read -r target; do
        case $target in
            '' | [a-z]*:*) ;;
            *) [ -e "${document%/*}/$target" ] || echo "$document leads to $target" ;;
        esac
    done
done)
[ -z "$dead" ] || {
    echo "$dead" >&2
    exit 1
}

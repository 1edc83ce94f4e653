#!/bin/sh
# Prints settings for the demo's console: as many windows as fit side by side on a terminal of that size, none
# over another.
#
#   scripts/demo_layout.sh ROWS COLUMNS
#
# Windows are placed in the order of the list, each as high up and as far to the left as it fits. The list is
# gone through from its first window, and from the next ones as long as two thirds of the terminal are not covered.
set -eu

# Window and its size, the ones that tell most first; the small ones at the end fill what is left.
awk -v rows="$1" -v cols="$2" '
{ name[NR] = $1; split($2, size, "x"); w[NR] = size[1]; h[NR] = size[2] }

# Whether window i at row y and column x is on the terminal, whose last row is the status line, and free.
function fits(i, y, x,    k) {
    if (x + w[i] > cols || y + h[i] > rows - 1) return 0
    for (k = 1; k <= placed; k++)
        if (x < px[k] + w[which[k]] && px[k] < x + w[i] && y < py[k] + h[which[k]] && py[k] < y + h[i]) return 0
    return 1
}

# Tries the corners that the windows before leave; the topmost, then leftmost is taken.
function place(i,    a, b, y, x, best_y, best_x) {
    best_y = rows
    for (a = 0; a <= placed; a++) for (b = 0; b <= placed; b++) {
        y = a ? py[a] + h[which[a]] : 0
        x = b ? px[b] + w[which[b]] : 0
        if (y > best_y || (y == best_y && x >= best_x) || !fits(i, y, x)) continue
        best_y = y
        best_x = x
    }
    if (best_y == rows) return 0
    which[++placed] = i
    py[placed] = best_y
    px[placed] = best_x
    return w[i] * h[i]
}

END {
    for (first = 1; first <= NR && most < rows * cols * 2 / 3; first++) {
        placed = covered = 0
        for (k = 0; k < NR; k++) covered += place((first + k - 1) % NR + 1)
        if (covered <= most) continue
        most = covered
        layout = ""
        for (k = 1; k <= placed; k++) {
            key = "Windows;" name[which[k]] ";"
            layout = layout key "XPos = " px[k] "\n" key "YPos = " py[k] "\n" key "Visible = TRUE\n"
        }
    }
    printf "%s", layout
}' <<'END_OF_LIST'
neph:N11 55x18
aethalometer:A81 75x11
cpc_3010:N61 31x12
psap3:A12 58x14
caps:E71 37x13
clap3w:A13 52x15
pax:E72 60x15
ccn:N71 41x23
grimm:S11 54x22
maap:A82 34x18
lovepid:C11 43x7
verticalprofile:V11 29x9
watlow:C12 27x6
genericpid:C13 31x6
cpc_pulse:N68 31x7
END_OF_LIST

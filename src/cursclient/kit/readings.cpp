#include "cursclient/kit/readings.h"

void READINGS_headings(const CANVAS& d) {
    static constexpr const char* HEADINGS[] = {" Latest", "Running", "Average"};
    for (int i = 0; const int col : READINGS_COLUMNS)
        d.text(1, col, HEADINGS[i++]);
}

void READINGS_words(const CANVAS& d, const CANVAS& faults, int row, int width, DWORD flags,
                    NETDSD_meanings meanings) {
    int col = 1;
    for (const NETDSD_meaning& m : meanings) {
        if ((flags & m.value) == 0) continue;
        const std::string_view text = m.text;
        const int length = static_cast<int>(text.size());
        if (col > 1 && col + length > width - 1) {
            ++row;
            col = 1;
        }
        (m.severity == NETDSD_FAULT ? faults : d).text(row, col, text);
        col += length + 2;
    }
}

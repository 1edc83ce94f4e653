// A line over the limit is dropped as it comes, so that its length does not matter.
#include "peer/lines.h"

void LINES_reader::keep(std::string_view piece) {
    if (m_too_long) return;
    if (piece.size() > m_limit - m_line.size()) {
        m_too_long = TRUE;
        m_line = std::string();  // gives the memory back, too
        return;
    }
    m_line += piece;
}

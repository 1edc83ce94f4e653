// The parts of a display that a message brought up, whatever its kind.
#include "cursclient/kit/matchdisp.h"

#include "libvesk/support/util.h"

bool MATCHDISP_open(MATCHDISP_head* pd, const char* source, const char* display_name,
                    const MATCHDISP_parts& parts) {
    SFMT_init_buffer(&pd->sbfr);
    UTIL_strcpynt(pd->name, source != nullptr && source[0] != '\0' ? source : display_name);
    UTIL_strcpynt(pd->display_name, display_name);
    UTIL_strcpynt(pd->type, display_name);
    pd->id_ch = parts.id_ch;
    MAINMENU_selected_callback chosen = parts.chosen;
    void* user_ptr = pd;
    if (parts.cols != 0) {
        pd->win = WINS_create(parts.ident, parts.cols, parts.rows);
        if (pd->win == nullptr) return false;
        chosen = MAINMENU_default_focus_window;
        user_ptr = pd->win;
    }
    pd->mme = MAINMENU_addentry(pd->id_ch, pd->display_name, chosen, user_ptr);
    return pd->mme != nullptr;
}

bool MATCHDISP_is_made(const MATCHDISP_head* pd) {
    return pd->mme != nullptr;
}

// The arguments and times of callbacks, and their rights over dialogs: anything, including closing their own.
#include "libveskcurs/cursdialog.h"

#include "unit/libveskcurs/dialog_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

CURSDIALOG_type* g_other = nullptr;  // the dialog that callbacks of the tests close or find open

void log_tag(const char* what, void* tag) {
    g_log.emplace_back(std::string(what) + " " + (tag != nullptr ? static_cast<const char*>(tag) : "-"));
}
void log_closed(CURSDIALOG_type*, void* tag) {
    log_tag("closed", tag);
}
void log_cleanup(void* tag) {
    log_tag("cleanup", tag);
}

class DialogCallbacks : public DialogTest {
  protected:
    static CURSDIALOG_type* open_logging(const char* tag, CURSDIALOG_closed_cb closed = log_closed) {
        return open(tag, 0, tag, closed, log_cleanup);
    }
    static void add(CURSDIALOG_type* dlg, CURSDIALOG_button_cb cb) {
        ASSERT_NE(CURSDIALOG_add_button(dlg, 1, 1, 0, CURSDIALOG_STYLE_LIST, 0, "go", cb, nullptr, 0),
                  nullptr);
    }
};

TEST_F(DialogCallbacks, UserDataIsACopy) {
    struct Record {
        double number;
        char text[8];
    };
    auto record = std::make_unique<Record>(Record{1.5, "mine"});
    CURSDIALOG_type* dlg =
        CURSDIALOG_create(normal(), highlight(), "", 0, record.get(), sizeof *record, nullptr, nullptr);
    const auto callback = [](CURSDIALOG_type*, void* dlg_data, CURSDIALOG_widget*, void* wd_data,
                             CURSDIALOG_button_action*) {
        EXPECT_EQ(static_cast<Record*>(dlg_data)->number, 1.5);
        g_log.emplace_back(static_cast<Record*>(wd_data)->text);
    };
    CURSDIALOG_add_button(dlg, 1, 1, 0, 2, 0, "go", callback, record.get(), sizeof *record);
    record.reset();
    press({'\n'});
    EXPECT_THAT(g_log, ElementsAre("mine"));
}

TEST_F(DialogCallbacks, ClosedAndCleanupRunOnceForEveryWayToClose) {
    struct Way {
        const char* what;
        void (*close)(CURSDIALOG_type*);
    };
    const Way ways[] = {
        {"button",
         [](CURSDIALOG_type* dlg) {
             CURSDIALOG_add_button(dlg, 1, 1, 0, 3, 0, "Close", CURSDIALOG_DEFAULT_button_close, nullptr, 0);
             press({'\n'});
         }},
        {"escape", [](CURSDIALOG_type*) { press({CURSKEYS_ESCAPE}); }},
        {"ctrl-w", [](CURSDIALOG_type*) { press({CURSKEYS_CTRL_W}); }},
        {"call", [](CURSDIALOG_type* dlg) { CURSDIALOG_close(dlg); }},
        {"two calls",
         [](CURSDIALOG_type* dlg) {
             CURSDIALOG_close(dlg);
             CURSDIALOG_close(dlg);
         }},
        {"end of the toolkit", [](CURSDIALOG_type*) { CURSDIALOG_cleanup(); }},
    };
    for (const Way& way : ways) {
        g_log.clear();
        way.close(open_logging("d"));
        EXPECT_THAT(g_log, ElementsAre("closed d", "cleanup d")) << way.what;
        EXPECT_FALSE(CURSDIALOG_active()) << way.what;
    }
}

TEST_F(DialogCallbacks, ButtonThatClosesItsOwnDialogTwiceAndOpensOthers) {
    add(open_logging("own"),
        [](CURSDIALOG_type* dlg, void* data, CURSDIALOG_widget* wd, void*, CURSDIALOG_button_action* act) {
            CURSDIALOG_close(dlg);
            for (int i = 0; i < 20; ++i)
                open("next");  // more than any storage would keep in place
            CURSDIALOG_close(dlg);
            EXPECT_EQ(CURSDIALOG_add_label(dlg, 1, 1, 0, 0, "too late"), nullptr);
            CURSDIALOG_setlabel(wd, "still there");
            EXPECT_STREQ(CURSDIALOG_getvalue(wd, nullptr, 0), "still there");
            log_tag("pressed", data);
            act->close_dialog = TRUE;
        });
    press({'\n'});
    EXPECT_THAT(g_log, ElementsAre("closed own", "pressed own", "cleanup own"));
    EXPECT_THAT(shown(), HasSubstr("next"));
    for (int i = 0; i < 20; ++i)
        press({CURSKEYS_ESCAPE});
    EXPECT_FALSE(CURSDIALOG_active());
}

// As a dialog does that closes the one it opened, whose closed callback writes to the first one's record.
TEST_F(DialogCallbacks, ClosedCallbackMayCloseAnother) {
    g_other = open(
        "child", 0, "child",
        [](CURSDIALOG_type*, void* tag) {
            log_tag("closed", tag);
            g_other = nullptr;
        },
        log_cleanup);
    CURSDIALOG_type* parent = open_logging("parent", [](CURSDIALOG_type*, void* tag) {
        CURSDIALOG_close(g_other);
        log_tag("closed", tag);
    });
    CURSDIALOG_close(parent);
    EXPECT_EQ(g_other, nullptr);
    EXPECT_THAT(g_log, ElementsAre("closed child", "closed parent", "cleanup child", "cleanup parent"));
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(DialogCallbacks, VerifierMayCloseItsDialogInEveryWayAtOnce) {
    const auto verify = [](CURSDIALOG_type* dlg, void*, CURSDIALOG_widget*, void*, char* str,
                           CURSDIALOG_entry_action* act) {
        CURSDIALOG_close(dlg);
        g_log.emplace_back(str);
        act->close_dialog = TRUE;
        act->revert_value = TRUE;
    };
    for (const int key : {10, KEY_UP}) {
        g_log.clear();
        CURSDIALOG_type* dlg = open_logging("prompt");
        CURSDIALOG_force_entry_input(dlg, entry(dlg, 1, "", "", 63, verify));
        button(dlg, 1, 2, "never");
        type("abc");
        press({key});
        EXPECT_THAT(g_log, ElementsAre("closed prompt", "abc", "cleanup prompt"));
        EXPECT_FALSE(CURSDIALOG_active());
    }
}

TEST_F(DialogCallbacks, EndOfTheToolkitClosesFromTheTopAndOpensNothing) {
    open_logging("lower");
    open_logging("middle", [](CURSDIALOG_type*, void* tag) {
        log_tag("closed", tag);
        EXPECT_EQ(open_logging("refused"), nullptr);
    });
    open_logging("upper");
    CURSDIALOG_cleanup();
    EXPECT_THAT(g_log, ElementsAre("closed upper", "closed middle", "closed lower", "cleanup lower",
                                   "cleanup middle", "cleanup upper"));
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_NE(open(), nullptr) << "a new start";
}

}  // namespace

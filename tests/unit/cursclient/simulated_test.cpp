// Every kind of the simulated station on its display: what the one says is all that the other shows.
#include "support/display_rig.h"
#include "support/sim_probe.h"

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class Simulated : public DisplayRig {
  protected:
    static void hear(const SimProbe& probe) {
        for (const SentMessage& m : probe.sink.sent)
            receive(probe.instrument.name().c_str(), m.msg, m.dsd,
                    m.dsd != nullptr ? m.payload.data() : nullptr);
    }
};

TEST_F(Simulated, KindsFillEveryViewOfTheirWindows) {
    for (const SIM_kind& kind : SIM_kinds()) {
        SimProbe probe(kind.type);
        probe.command(MSG_CAPS_ISSUE_ZERO);  // others know the baseline from the start
        probe.run(1700);
        set_time(probe.world.now);
        hear(probe);
        const std::string ident = std::string(kind.type) + ":" + kind.name;
        focus(ident.c_str());
        for (const char key : std::string_view("sSddddddaahn")) {
            EXPECT_THAT(inside(ident.c_str()), AllOf(Not(HasSubstr("-.-")), Not(HasSubstr("NO COMMS"))))
                << kind.type << " before " << key;
            press(key);
        }
        leave(kind.name);
    }
}

}  // namespace

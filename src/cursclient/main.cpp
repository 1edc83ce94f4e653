// The console's main: everything is in CURSCLIENT_main, so that tests can link the rest.
#include "cursclient/cursclient.h"

int main(int argc, char** argv) {
    return CURSCLIENT_main(argc, argv);
}

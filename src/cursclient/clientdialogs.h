// The dialogs of the console's own entries in the main menu: client options and disk operations.
#pragma once

// Entry callbacks; the argument is ignored.
void CLIENTDIALOGS_client_options(void* user_ptr);
void CLIENTDIALOGS_disk_operations(void* user_ptr);

// The two databases of the settings.
#pragma once

#include <sqlite3.h>

// Returns the connection to the persistent or the volatile database, or null if it can't be opened,
// which is logged. The first call opens the database; after a failure the next call tries again.
// The connection stays open until the process ends and must not be closed. Any thread may call.
sqlite3* openPersistentDatabase();
sqlite3* openVolatileDatabase();

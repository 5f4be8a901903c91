// The host's working drawing as the module reaches it through the SDK.
#pragma once

class KxDbDatabase;

namespace kdml {

// The database that holds the named-object dictionary the host reports for
// its working drawing; null when no drawing is open.
KxDbDatabase* workingDatabase();

}  // namespace kdml

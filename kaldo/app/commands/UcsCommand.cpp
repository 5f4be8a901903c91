// UCS: World puts the user coordinate system back on the world; Z rotates
// it about its own Z axis by an angle (degrees unless the angle says
// otherwise), keeping its origin.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/core/Host.h"
#include "kxdbdatabase.h"
#include "kxed.h"
#include "kxedunits.h"

#include <cmath>

namespace kaldo {

namespace {

void rotateAboutZ(KxDbDatabase& db, double radians)
{
    const KxGeVector3d x = db.ucsxdir();
    const KxGeVector3d y = db.ucsydir();
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    db.setUcs(db.ucsorg(), x * c + y * s, y * c - x * s);
}

// Asks for the rotation; false when the user gave none.
bool askRotation(double& radians)
{
    for (;;) {
        wchar_t text[KXED_TEXT_SIZE] = {};
        const int result = kxedGetString(0, L"\nSpecify rotation angle about Z axis <90>: ", text);
        if (result == RTNONE || (result == RTNORM && !*text)) {
            radians = M_PI / 2;
            return true;
        }
        if (result != RTNORM)
            return false;
        if (kxdbAngToF(text, -1, &radians) == RTNORM)
            return true;
        kxutPrintf(L"\nRequires a valid angle.\n");
    }
}

}  // namespace

void ucsCommand()
{
    KxDbDatabase* db = host().database;
    if (!db)
        return;
    kxedInitGet(0, L"World Z _World Z");
    wchar_t option[KXED_TEXT_SIZE] = {};
    const int result = kxedGetKword(L"\nEnter an option [World/Z] <World>: ", option);
    if (result == RTNONE || (result == RTNORM && std::wstring_view(option) == L"World")) {
        db->setUcs(KxGePoint3d{}, KxGeVector3d{1, 0, 0}, KxGeVector3d{0, 1, 0});
        return;
    }
    double radians = 0;
    if (result == RTNORM && std::wstring_view(option) == L"Z" && askRotation(radians))
        rotateAboutZ(*db, radians);
}

}  // namespace kaldo

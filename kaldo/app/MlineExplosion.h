// Exploding a multiline: the lines, arcs and fill it is drawn with become
// entities of their own, beside it in its block, on its layer. Runs of an
// element become LINEs in the element's colour and linetype; line caps and
// joints LINEs, arc caps ARCs, in the element's colour and continuous, as
// they are drawn; the fill one solid HATCH in the fill colour whose
// boundary loops are the filled quadrilaterals between the outer elements,
// or, for files that know no HATCH, one SOLID per quadrilateral.
// The pieces are those the renderer draws (MlinePieces).
#pragma once

#include "kxdbid.h"

class KxDbDatabase;

namespace kaldo {

struct Explosion {
    bool exploded = false;  // the multiline was erased
    int lines = 0;
    int arcs = 0;
    int hatches = 0;
    int solids = 0;
};

enum class FillForm { Hatch, Solids };

// Adds the pieces of the multiline id names and erases it; a multiline
// that cannot be opened for write, or whose block cannot, is left as it
// was and nothing is added.
Explosion explodeMline(KxDbDatabase& db, KxDbObjectId id, FillForm fillForm = FillForm::Hatch);

// Explodes every multiline of every block of db (model and paper space
// included); returns how many were exploded.
int explodeAllMlines(KxDbDatabase& db, FillForm fillForm = FillForm::Hatch);

}  // namespace kaldo

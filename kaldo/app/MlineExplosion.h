// Exploding a multiline: the lines, arcs and fill it is drawn with become
// entities of their own, on its layer, in its place in its block's drawing
// order: the fill first, then the element lines, then joints and caps, so
// that readers drawing in that order show the lines over the fill. Runs of
// an element become LINEs in the element's colour and linetype; line caps
// and joints LINEs, arc caps ARCs, in the element's colour and continuous,
// as they are drawn; the fill one solid HATCH in the fill colour whose
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
    int points = 0;
};

enum class FillForm { Hatch, Solids };

// How the pieces are made. Copies for other programs carry the dashes of
// dashed element runs as continuous LINEs (dots as POINTs), as drawn,
// since some readers draw a linetype by its name alone in dash sizes of
// their own; and, where the file has them, sort tables that give readers
// drawing by handle the block's order.
struct ExplodeForm {
    FillForm fill = FillForm::Hatch;
    bool dashesAsLines = false;
    bool sortTables = false;
};

// Explodes the multiline id names and erases it; a multiline that cannot
// be opened for write, or whose block cannot, is left as it was and
// nothing is added.
Explosion explodeMline(KxDbDatabase& db, KxDbObjectId id, const ExplodeForm& form = {});

// Explodes every multiline of every block of db (model and paper space
// included); returns how many were exploded.
int explodeAllMlines(KxDbDatabase& db, const ExplodeForm& form = {});

}  // namespace kaldo

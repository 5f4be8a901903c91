// Combo boxes of the host's user-interface library for a style element's
// colour and linetype.
#pragma once

#include "kxcmcolor.h"
#include "kxdbid.h"
#include "kxuictrl.h"

#include <vector>

class KxDbDatabase;

// Colours: ByLayer, ByBlock, the seven basic index colours, then the colours
// used lately (index colours, true colours, colour-book colours), each with
// a swatch. The rows are filled when the control is bound.
class CKxUiTrueColorComboBox : public CComboBox {
public:
    // Puts color first among the colours used lately (and in the list when
    // it is not there yet).
    void AddColorToMRU(const KxCmColor& color);
    // The row of color, -1 when the list has none.
    int FindItemByColor(const KxCmColor& color) const;
    // The colour of the selected row (ByLayer when none is selected).
    KxCmColor GetCurrentItemColor() const;

protected:
    void OnAttached() override;

private:
    int addRow(const KxCmColor& color);

    std::vector<KxCmColor> m_colors;  // by row: the row's item data indexes it
    std::vector<KxCmColor> m_recent;  // latest first
};

// Linetypes of a drawing's linetype table: ByLayer, ByBlock, then every
// other record in table order, reserved names in their localised form. The
// rows are filled from the working drawing when the control is bound.
class CKxUiLineTypeComboBox : public CComboBox {
public:
    // Fills the rows from the linetype table of database.
    void Fill(const KxDbDatabase& database);
    // The row of a linetype, -1 when the list has none.
    int FindItemByLinetype(KxDbObjectId linetype) const;
    // The linetype of the selected row (null when none is selected).
    KxDbObjectId GetCurrentLinetype() const;

protected:
    void OnAttached() override;

private:
    std::vector<KxDbObjectId> m_linetypes;  // by row
};

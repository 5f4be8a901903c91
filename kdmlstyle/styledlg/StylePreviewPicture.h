// The style manager's preview control: a static control whose drawer turns
// the preview record into temporary lines and arcs and shows them through
// the host's drawable previewer, fitted to the control on the drawing
// window's background colour.
#pragma once

#include "kxgipreview.h"
#include "kxtypes.h"
#include "kxuictrl.h"
#include "styledlg/StylePreviewData.h"

#include <memory>

class KxDbDatabase;

namespace kdml {

class CMlStylePreviewPictureDrawer {
public:
    explicit CMlStylePreviewPictureDrawer(const StylePreviewData* record);
    virtual ~CMlStylePreviewPictureDrawer();
    CMlStylePreviewPictureDrawer(const CMlStylePreviewPictureDrawer&) = delete;
    CMlStylePreviewPictureDrawer& operator=(const CMlStylePreviewPictureDrawer&) = delete;

    // Rebuilds the entities when the record changed (or none exist yet) and
    // shows them in control.
    void paint(CWnd& control);
    void onSize(int cx, int cy);
    void invalidate() { m_dirty = true; }
    // The control's window is going: its previewer goes with it (on the
    // thread that owns the window), and the next window builds anew.
    void releaseWindow();
    // The entities shown now.
    const KdVector<KxGiDrawable*>& drawables() const { return m_drawables; }

private:
    bool buildPreviewGeometry(CWnd& control);
    void addPreviewLine(const KxGePoint3d& from, const KxGePoint3d& to, int element, bool elementLinetype);
    void addPreviewArc(const KxGePoint3d& centre, double startAngle, double endAngle, double radius, int element);
    void clear();

    bool m_dirty = false;
    KxDbDatabase* m_database;
    KxDbObjectId m_continuous;
    KdVector<KxGiDrawable*> m_drawables;
    const StylePreviewData* m_record;
    std::unique_ptr<KaldGiDrawablePreviewer> m_previewer;
};

class CMlStylePreviewPicture : public CStatic {
public:
    explicit CMlStylePreviewPicture(const StylePreviewData& record);
    ~CMlStylePreviewPicture() override;

    // The record changed: the next paint draws it anew.
    void invalidatePreview();
    const CMlStylePreviewPictureDrawer& drawer() const { return *m_drawer; }

protected:
    void OnPaint() override;
    void OnSize(int type, int cx, int cy) override;
    void OnDetaching() override;

private:
    std::unique_ptr<CMlStylePreviewPictureDrawer> m_drawer;
};

}  // namespace kdml

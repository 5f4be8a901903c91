#include "styledlg/StylePreviewPicture.h"

#include "host/WorkingDatabase.h"
#include "styledlg/StylePreviewGeometry.h"

#include "kxdb.h"

namespace kdml {

namespace {

KxDbObjectId continuousLinetype(KxDbDatabase* database)
{
    KxDbObjectId id;
    KxDbLinetypeTable* opened = nullptr;
    if (!database || database->getLinetypeTable(opened, KxDb::kForRead) != Kald::eOk)
        return id;
    const KxDbObjectPtr<KxDbLinetypeTable> table(opened);
    table->getAt(kxdbGetReservedString(3, false), id);
    return id;
}

}  // namespace

CMlStylePreviewPictureDrawer::CMlStylePreviewPictureDrawer(const StylePreviewData* record)
    : m_database(workingDatabase()), m_continuous(continuousLinetype(m_database)), m_record(record)
{
}

CMlStylePreviewPictureDrawer::~CMlStylePreviewPictureDrawer()
{
    clear();
}

void CMlStylePreviewPictureDrawer::clear()
{
    m_previewer.reset();
    for (KxGiDrawable* drawable : m_drawables)
        delete drawable;
    m_drawables.clear();
}

void CMlStylePreviewPictureDrawer::paint(CWnd& control)
{
    if (!m_drawables.isEmpty() && !m_dirty)
        return;
    if (!buildPreviewGeometry(control))
        return;
    if (!m_previewer)
        m_previewer = std::make_unique<KaldGiDrawablePreviewer>(control.GetSafeHwnd(), m_database, m_drawables,
                                                                 KxGePoint2d::kOrigin, KxGePoint2d{1.0, 1.0}, -1);
    m_previewer->setBackground(getBKGColor(m_database && m_database->tilemode() == 1, nullptr, nullptr));
    m_previewer->update();
    m_dirty = false;
}

void CMlStylePreviewPictureDrawer::releaseWindow()
{
    m_previewer.reset();
    m_dirty = true;
}

void CMlStylePreviewPictureDrawer::onSize(int cx, int cy)
{
    if (!m_previewer)
        return;
    m_previewer->onSize(cx, cy);
    m_previewer->invalidate(true);
}

bool CMlStylePreviewPictureDrawer::buildPreviewGeometry(CWnd& control)
{
    CRect client;
    control.GetClientRect(&client);
    clear();
    if (!m_record || m_record->elements.empty())
        return false;
    const PreviewGeometry geometry = previewGeometry(*m_record, client.left, client.top, client.right, client.bottom);
    for (const PreviewLine& line : geometry.lines)
        addPreviewLine(line.from, line.to, line.element, line.elementLinetype);
    for (const PreviewArc& arc : geometry.arcs)
        addPreviewArc(arc.centre, arc.startAngle, arc.endAngle, arc.radius, arc.element);
    return true;
}

void CMlStylePreviewPictureDrawer::addPreviewLine(const KxGePoint3d& from, const KxGePoint3d& to, int element,
                                                  bool elementLinetype)
{
    const StylePreviewElement& source = m_record->elements[std::size_t(element)];
    auto* line = new KxDbLine(from, to);
    line->setDatabaseDefaults(m_database);
    line->setLinetype(elementLinetype ? source.linetype : m_continuous, true);
    line->setColor(source.color, true);
    line->setLineWeight(KxDb::kLnWtByLwDefault, true);
    line->setLinetypeScale(1.0, true);
    m_drawables.push_back(line);
}

void CMlStylePreviewPictureDrawer::addPreviewArc(const KxGePoint3d& centre, double startAngle, double endAngle,
                                                 double radius, int element)
{
    auto* arc = new KxDbArc(centre, radius, startAngle, endAngle);
    arc->setDatabaseDefaults(m_database);
    arc->setLinetype(m_continuous, true);
    arc->setColor(m_record->elements[std::size_t(element)].color, true);
    arc->setLineWeight(KxDb::kLnWtByLwDefault, true);
    arc->setLinetypeScale(1.0, true);
    m_drawables.push_back(arc);
}

CMlStylePreviewPicture::CMlStylePreviewPicture(const StylePreviewData& record)
    : m_drawer(std::make_unique<CMlStylePreviewPictureDrawer>(&record))
{
}

CMlStylePreviewPicture::~CMlStylePreviewPicture()
{
    Detach();
}

void CMlStylePreviewPicture::invalidatePreview()
{
    m_drawer->invalidate();
    Invalidate(true);
}

void CMlStylePreviewPicture::OnPaint()
{
    m_drawer->paint(*this);
}

void CMlStylePreviewPicture::OnSize(int, int cx, int cy)
{
    m_drawer->onSize(cx, cy);
}

void CMlStylePreviewPicture::OnDetaching()
{
    m_drawer->releaseWindow();
    CStatic::OnDetaching();
}

}  // namespace kdml

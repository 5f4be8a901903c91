#include "kaldo/view/DrawingRenderer.h"

#include <cmath>
#include <numbers>
#include <unordered_map>

#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/MlineRenderer.h"
#include "kaldo/view/PenResolver.h"
#include "kaldo/view/PlaneArc.h"
#include "kaldo/view/PolylineRenderer.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"

namespace kaldo::view {

namespace {

void drawLine(const KxDbLine& line, int pen, Scene& scene)
{
    scene.addLine({line.startPoint().x, line.startPoint().y}, {line.endPoint().x, line.endPoint().y}, pen);
}

void drawArc(const KxDbArc& arc, int pen, Scene& scene)
{
    double sweep = std::fmod(arc.endAngle() - arc.startAngle(), 2 * std::numbers::pi);
    if (sweep <= 0)
        sweep += 2 * std::numbers::pi;
    addPlaneArc(scene, EntityPlane(arc.normal()), arc.center(), arc.radius(), arc.startAngle(), sweep, pen);
}

void drawCircle(const KxDbCircle& circle, int pen, Scene& scene)
{
    addPlaneArc(scene, EntityPlane(circle.normal()), circle.center(), circle.radius(), 0, 2 * std::numbers::pi, pen);
}

// Styles stay open for read while a drawing is rendered: many multilines
// share a few styles.
using OpenStyles = std::unordered_map<KxDbObjectId, KxDbObjectPtr<KxDbMlineStyle>>;

// Draws entities one by one into a scene.
class EntityDrawer {
public:
    EntityDrawer(const KxDbDatabase& db, Scene& scene) : m_scene(scene), m_pens(db, scene), m_mlines(m_pens) {}

    void draw(const KxDbEntity& entity)
    {
        const LayerLook& layer = m_pens.layer(entity.layerId());
        if (!layer.visible)
            return;
        if (const auto* mline = KxDbMline::cast(&entity))
            drawMline(*mline, layer);
        else if (const auto* line = KxDbLine::cast(&entity))
            drawLine(*line, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* arc = KxDbArc::cast(&entity))
            drawArc(*arc, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* circle = KxDbCircle::cast(&entity))
            drawCircle(*circle, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* polyline = KxDbPolyline::cast(&entity))
            drawPolyline(*polyline, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
    }

private:
    void drawMline(const KxDbMline& mline, const LayerLook& layer)
    {
        const KxDbMlineStyle* style = nullptr;
        if (!mline.style().isNull()) {
            auto found = m_styles.find(mline.style());
            if (found == m_styles.end())
                found =
                    m_styles.emplace(mline.style(), KxDbObjectPtr<KxDbMlineStyle>(mline.style(), KxDb::kForRead)).first;
            style = found->second.get();
        }
        m_mlines.draw(mline, style, layer);
    }

    Scene& m_scene;
    PenResolver m_pens;
    MlineRenderer m_mlines;
    OpenStyles m_styles;
};

}  // namespace

Scene renderDrawing(const KxDbDatabase& db)
{
    Scene scene;
    KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
    if (!space)
        return scene;
    // Room for a typical multiline per entity: pages only count once
    // written, and growing by copies would write everything twice.
    const std::size_t entities = std::size_t(space->numEntities());
    scene.reserve(entities * 48, entities * 8);
    EntityDrawer drawer(db, scene);
    const auto it = space->newIterator();
    for (it->start(); !it->done(); it->step()) {
        KxDbEntity* opened = nullptr;
        if (it->getEntity(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        drawer.draw(*entity);
    }
    return scene;
}

Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities)
{
    Scene scene;
    EntityDrawer drawer(db, scene);
    for (const KxDbEntity* entity : entities)
        drawer.draw(*entity);
    return scene;
}

}  // namespace kaldo::view

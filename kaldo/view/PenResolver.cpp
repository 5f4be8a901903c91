#include "kaldo/view/PenResolver.h"

#include "kaldo/view/ColorPalette.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"

namespace kaldo::view {

PenResolver::PenResolver(const KxDbDatabase& db, Scene& scene) : m_db(db), m_scene(scene) {}

const LayerLook& PenResolver::layer(KxDbObjectId layerId)
{
    const auto found = m_layers.find(layerId);
    if (found != m_layers.end())
        return found->second;
    LayerLook look;
    if (KxDbObjectPtr<KxDbLayerTableRecord> record(layerId, KxDb::kForRead); record) {
        look.color = drawColor(record->color(), DrawColor{});
        look.linetype = record->linetypeObjectId();
        look.visible = !record->isOff() && !record->isFrozen();
    }
    return m_layers.emplace(layerId, look).first->second;
}

int PenResolver::pattern(KxDbObjectId linetype, const LayerLook& layer)
{
    if (linetype == m_db.byLayerLinetype())
        linetype = layer.linetype;
    if (linetype.isNull() || linetype == m_db.byLayerLinetype() || linetype == m_db.byBlockLinetype())
        return 0;
    const auto found = m_patterns.find(linetype);
    if (found != m_patterns.end())
        return found->second;
    int index = 0;
    if (KxDbObjectPtr<KxDbLinetypeTableRecord> record(linetype, KxDb::kForRead); record)
        index = m_scene.addPattern(record->dashes());
    m_patterns.emplace(linetype, index);
    return index;
}

int PenResolver::pen(const KxCmColor& color, KxDbObjectId linetype, const LayerLook& layer)
{
    return m_scene.pen({drawColor(color, layer.color), pattern(linetype, layer)});
}

int PenResolver::continuousPen(const KxCmColor& color, const LayerLook& layer)
{
    return m_scene.pen({drawColor(color, layer.color), 0});
}

}  // namespace kaldo::view

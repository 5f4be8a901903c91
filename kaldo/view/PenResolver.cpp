#include "kaldo/view/PenResolver.h"

#include "kaldo/db/PackedGroupValue.h"
#include "kaldo/view/ColorPalette.h"
#include "kaldo/view/RecordShapes.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"

namespace kaldo::view {

namespace {

constexpr int kLineWeightGroup = 370;
constexpr int kThickestLineWeight = 211;

// A lineweight from a file's groups when they hold a valid one.
int lineWeightIn(KxDbPackedGroupsView groups, int fallback)
{
    const auto found = kaldo::firstGroupValue(groups, kLineWeightGroup);
    const int weight = found ? integerIn(*found, fallback) : fallback;
    return weight >= KxDb::kLnWtByLwDefault && weight <= kThickestLineWeight ? weight : fallback;
}

}  // namespace

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
        const int weight = lineWeightIn(record->keptGroups(), kDefaultLineWeight);
        look.lineWeight = weight >= 0 ? weight : kDefaultLineWeight;
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

std::size_t PenResolver::PenKeyHash::operator()(const PenKey& key) const
{
    std::size_t hash = std::hash<KxDbObjectId>()(key.linetype);
    for (const std::size_t part :
         {std::hash<const void*>()(key.layer), std::size_t(key.color), std::size_t(key.lineWeight)})
        hash = hash * 31 + part;
    return hash;
}

int PenResolver::pen(const KxCmColor& color, KxDbObjectId linetype, const LayerLook& layer)
{
    const PenKey key{color.color(), linetype, &layer, m_lineWeight};
    if (key == m_lastPen.first)
        return m_lastPen.second;
    const auto [found, added] = m_pens.try_emplace(key);
    if (added)
        found->second = m_scene.pen({drawColor(color, layer.color), pattern(linetype, layer), m_lineWeight});
    m_lastPen = *found;
    return found->second;
}

int PenResolver::continuousPen(const KxCmColor& color, const LayerLook& layer)
{
    return m_scene.pen({drawColor(color, layer.color), 0, m_lineWeight});
}

void PenResolver::takeLineWeight(KxDbPackedGroupsView groups, int own, const LayerLook& layer)
{
    const int weight = lineWeightIn(groups, own);
    m_lineWeight = weight == KxDb::kLnWtByLayer ? layer.lineWeight : weight >= 0 ? weight : kDefaultLineWeight;
}

}  // namespace kaldo::view

// Turns the colours and linetypes of entities and style elements into the
// pens of a scene, looking layers and linetypes up once each.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>

#include "kaldo/view/Scene.h"
#include "kxcmcolor.h"
#include "kxdbid.h"

class KxDbDatabase;
class KxDbPackedGroupsView;

namespace kaldo::view {

// What an entity takes from its layer.
struct LayerLook {
    DrawColor color;
    KxDbObjectId linetype;
    int lineWeight = kDefaultLineWeight;
    bool visible = true;  // neither off nor frozen
};

// Pens carry the lineweight of the entity being drawn, taken before its
// pens are asked for.
class PenResolver {
public:
    PenResolver(const KxDbDatabase& db, Scene& scene);

    const LayerLook& layer(KxDbObjectId layerId);
    // The pattern of a linetype: ByLayer takes the layer's, ByBlock and
    // linetypes without dashes are continuous.
    int pattern(KxDbObjectId linetype, const LayerLook& layer);
    int pen(const KxCmColor& color, KxDbObjectId linetype, const LayerLook& layer);
    int continuousPen(const KxCmColor& color, const LayerLook& layer);
    // The lineweight of an entity whose file's groups are groups and whose
    // own is weight (group 370 when valid, else its own) for the pens asked
    // for next: ByLayer takes the layer's, ByBlock the default.
    void takeLineWeight(KxDbPackedGroupsView groups, int weight, const LayerLook& layer);

    Scene& scene() { return m_scene; }

private:
    const KxDbDatabase& m_db;
    Scene& m_scene;
    std::unordered_map<KxDbObjectId, LayerLook> m_layers;
    std::unordered_map<KxDbObjectId, int> m_patterns;
    // Pens by what an entity asks for them with: its colour, linetype,
    // layer and lineweight. Entities repeat a few such combinations.
    struct PenKey {
        std::uint32_t color = 0;
        KxDbObjectId linetype;
        const LayerLook* layer = nullptr;
        int lineWeight = 0;
        friend bool operator==(const PenKey&, const PenKey&) = default;
    };
    struct PenKeyHash {
        std::size_t operator()(const PenKey& key) const;
    };
    std::unordered_map<PenKey, int, PenKeyHash> m_pens;
    // The pen asked for last, which the next entity often asks for again.
    std::pair<PenKey, int> m_lastPen{PenKey{}, -1};
    int m_lineWeight = kDefaultLineWeight;
};

}  // namespace kaldo::view

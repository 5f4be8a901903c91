// Reads a drawing with dxflib and counts what its callbacks report, building
// nothing: the floor a plain streaming C++ reader sets for bench/compare.sh.
#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>

#include <cstdio>

namespace {

class EntityCounter : public DL_CreationAdapter {
public:
    void addLine(const DL_LineData&) override { ++entities; }
    void addArc(const DL_ArcData&) override { ++entities; }
    void addCircle(const DL_CircleData&) override { ++entities; }
    void addPolyline(const DL_PolylineData&) override { ++entities; }
    void addVertex(const DL_VertexData&) override { ++vertices; }
    void addText(const DL_TextData&) override { ++entities; }
    void addInsert(const DL_InsertData&) override { ++entities; }

    long entities = 0;
    long vertices = 0;
};

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: dxflib_read FILE\n", stderr);
        return 2;
    }
    EntityCounter counter;
    DL_Dxf dxf;
    if (!dxf.in(argv[1], &counter)) {
        std::fprintf(stderr, "dxflib could not read %s\n", argv[1]);
        return 1;
    }
    std::printf("%ld entities, %ld polyline vertices\n", counter.entities, counter.vertices);
    return 0;
}

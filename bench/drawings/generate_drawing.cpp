// Writes the drawings the file benchmarks open, deterministically, as
// other programs write them (R2000 records with subclass markers):
//   generate_drawing mixed N FILE        N entities: LINE, ARC, CIRCLE,
//                                        LWPOLYLINE of 20 vertices, TEXT and
//                                        INSERT of a small block in turn
//   generate_drawing multilines N FILE   N multilines of 10 vertices in a
//                                        style of 4 elements, no two vertices
//                                        alike (no parameter lists to share)
// FILE "-" writes to standard output.
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

// Buffered output of groups: the code right-aligned in three columns, the
// value on its own line.
class DxfOut {
public:
    explicit DxfOut(std::FILE* file) : file_(file) {}
    ~DxfOut() { flush(); }

    void text(int code, std::string_view value)
    {
        codeLine(code);
        append(value);
        append("\n");
    }
    void real(int code, double value)
    {
        codeLine(code);
        room(32);
        used_ = std::size_t(std::to_chars(buffer_ + used_, buffer_ + sizeof buffer_, value).ptr - buffer_);
        append("\n");
    }
    void integer(int code, long value)
    {
        codeLine(code);
        room(24);
        used_ = std::size_t(std::to_chars(buffer_ + used_, buffer_ + sizeof buffer_, value).ptr - buffer_);
        append("\n");
    }
    void handle(int code, std::uint64_t value)
    {
        codeLine(code);
        room(24);
        used_ = std::size_t(std::to_chars(buffer_ + used_, buffer_ + sizeof buffer_, value, 16).ptr - buffer_);
        for (char* c = buffer_ + used_ - 1; c >= buffer_ && *c != '\n'; --c)
            if (*c >= 'a' && *c <= 'f')
                *c = char(*c - 'a' + 'A');
        append("\n");
    }
    void point(int code, double x, double y, double z)
    {
        real(code, x);
        real(code + 10, y);
        real(code + 20, z);
    }
    void flush()
    {
        std::fwrite(buffer_, 1, used_, file_);
        used_ = 0;
    }

private:
    void codeLine(int code)
    {
        room(8);
        char digits[8];
        const auto end = std::to_chars(digits, digits + sizeof digits, code).ptr;
        for (long pad = 3 - (end - digits); pad > 0; --pad)
            buffer_[used_++] = ' ';
        std::memcpy(buffer_ + used_, digits, std::size_t(end - digits));
        used_ += std::size_t(end - digits);
        buffer_[used_++] = '\n';
    }
    void append(std::string_view text)
    {
        room(text.size());
        std::memcpy(buffer_ + used_, text.data(), text.size());
        used_ += text.size();
    }
    void room(std::size_t bytes)
    {
        if (used_ + bytes > sizeof buffer_)
            flush();
    }

    std::FILE* file_;
    char buffer_[1 << 20];
    std::size_t used_ = 0;
};

// A small deterministic generator of coordinates (no library state).
class Coordinates {
public:
    // A value in [0, range) with three decimals.
    double next(double range)
    {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return double((state_ >> 33) % std::uint64_t(range * 1000)) / 1000.0;
    }

private:
    std::uint64_t state_ = 0x2545F4914F6CDD1DULL;
};

// Handles of the records every drawing has; entities count up from kFirstEntity.
enum Handle : std::uint64_t {
    kBlockTable = 1,
    kLayerTable = 2,
    kLinetypeTable = 3,
    kRootDictionary = 0xC,
    kGroupDictionary = 0xD,
    kStyleDictionary = 0xE,
    kStandardStyle = 0xF,
    kFourStyle = 0x10,
    kContinuous = 0x14,
    kModelSpace = 0x1F,
    kPaperSpace = 0x20,
    kSmallBlock = 0x21,
    kModelBegin = 0x22,
    kModelEnd = 0x23,
    kPaperBegin = 0x24,
    kPaperEnd = 0x25,
    kSmallBegin = 0x26,
    kSmallEnd = 0x27,
    kSmallLine = 0x28,
    kSmallCircle = 0x29,
    kFirstLayer = 0x30,
    kFirstEntity = 0x100,
};

constexpr const char* kLayers[] = {"0", "WALLS", "DOORS", "WINDOWS", "TEXT", "FURNITURE"};
constexpr int kLayerCount = int(sizeof kLayers / sizeof kLayers[0]);

void entityStart(DxfOut& out, const char* kind, std::uint64_t handle, std::uint64_t owner, const char* layer,
                 const char* subclass)
{
    out.text(0, kind);
    out.handle(5, handle);
    out.handle(330, owner);
    out.text(100, "AcDbEntity");
    out.text(8, layer);
    out.text(100, subclass);
}

void tableStart(DxfOut& out, const char* name, std::uint64_t handle, int entries)
{
    out.text(0, "TABLE");
    out.text(2, name);
    out.handle(5, handle);
    out.handle(330, 0);
    out.text(100, "AcDbSymbolTable");
    out.integer(70, entries);
}

void symbolStart(DxfOut& out, const char* kind, std::uint64_t handle, std::uint64_t table, const char* subclass,
                 const char* name)
{
    out.text(0, kind);
    out.handle(5, handle);
    out.handle(330, table);
    out.text(100, "AcDbSymbolTableRecord");
    out.text(100, subclass);
    out.text(2, name);
    out.integer(70, 0);
}

void blockBrackets(DxfOut& out, const char* name, std::uint64_t record, std::uint64_t begin, std::uint64_t end,
                   const auto& content)
{
    entityStart(out, "BLOCK", begin, record, "0", "AcDbBlockBegin");
    out.text(2, name);
    out.integer(70, 0);
    out.point(10, 0, 0, 0);
    out.text(3, name);
    out.text(1, "");
    content();
    entityStart(out, "ENDBLK", end, record, "0", "AcDbBlockEnd");
}

void header(DxfOut& out, std::uint64_t handleSeed)
{
    out.text(0, "SECTION");
    out.text(2, "HEADER");
    out.text(9, "$ACADVER");
    out.text(1, "AC1015");
    out.text(9, "$HANDSEED");
    out.handle(5, handleSeed);
    out.text(9, "$INSUNITS");
    out.integer(70, 6);
    out.text(0, "ENDSEC");
}

void tables(DxfOut& out)
{
    out.text(0, "SECTION");
    out.text(2, "TABLES");
    tableStart(out, "LTYPE", kLinetypeTable, 1);
    symbolStart(out, "LTYPE", kContinuous, kLinetypeTable, "AcDbLinetypeTableRecord", "CONTINUOUS");
    out.text(3, "Solid line");
    out.integer(72, 65);
    out.integer(73, 0);
    out.real(40, 0);
    out.text(0, "ENDTAB");
    tableStart(out, "LAYER", kLayerTable, kLayerCount);
    for (int i = 0; i < kLayerCount; ++i) {
        symbolStart(out, "LAYER", kFirstLayer + std::uint64_t(i), kLayerTable, "AcDbLayerTableRecord", kLayers[i]);
        out.integer(62, i + 1);
        out.text(6, "CONTINUOUS");
    }
    out.text(0, "ENDTAB");
    tableStart(out, "BLOCK_RECORD", kBlockTable, 3);
    symbolStart(out, "BLOCK_RECORD", kModelSpace, kBlockTable, "AcDbBlockTableRecord", "*Model_Space");
    symbolStart(out, "BLOCK_RECORD", kPaperSpace, kBlockTable, "AcDbBlockTableRecord", "*Paper_Space");
    symbolStart(out, "BLOCK_RECORD", kSmallBlock, kBlockTable, "AcDbBlockTableRecord", "SMALL");
    out.text(0, "ENDTAB");
    out.text(0, "ENDSEC");
}

void blocks(DxfOut& out)
{
    out.text(0, "SECTION");
    out.text(2, "BLOCKS");
    blockBrackets(out, "*Model_Space", kModelSpace, kModelBegin, kModelEnd, [] {});
    blockBrackets(out, "*Paper_Space", kPaperSpace, kPaperBegin, kPaperEnd, [] {});
    blockBrackets(out, "SMALL", kSmallBlock, kSmallBegin, kSmallEnd, [&out] {
        entityStart(out, "LINE", kSmallLine, kSmallBlock, "0", "AcDbLine");
        out.point(10, -1, 0, 0);
        out.point(11, 1, 0, 0);
        entityStart(out, "CIRCLE", kSmallCircle, kSmallBlock, "0", "AcDbCircle");
        out.point(10, 0, 0, 0);
        out.real(40, 0.5);
    });
    out.text(0, "ENDSEC");
}

void dictionaryStart(DxfOut& out, std::uint64_t handle, std::uint64_t owner)
{
    out.text(0, "DICTIONARY");
    out.handle(5, handle);
    out.handle(330, owner);
    out.text(100, "AcDbDictionary");
    out.integer(281, 1);
}

void mlineStyle(DxfOut& out, std::uint64_t handle, const char* name, std::initializer_list<double> offsets)
{
    out.text(0, "MLINESTYLE");
    out.handle(5, handle);
    out.handle(330, kStyleDictionary);
    out.text(100, "AcDbMlineStyle");
    out.text(2, name);
    out.integer(70, 0);
    out.text(3, "");
    out.integer(62, 256);
    out.real(51, 90);
    out.real(52, 90);
    out.integer(71, long(offsets.size()));
    for (const double offset : offsets) {
        out.real(49, offset);
        out.integer(62, 256);
        out.text(6, "BYLAYER");
    }
}

void objects(DxfOut& out)
{
    out.text(0, "SECTION");
    out.text(2, "OBJECTS");
    dictionaryStart(out, kRootDictionary, 0);
    out.text(3, "ACAD_GROUP");
    out.handle(350, kGroupDictionary);
    out.text(3, "ACAD_MLINESTYLE");
    out.handle(350, kStyleDictionary);
    dictionaryStart(out, kGroupDictionary, kRootDictionary);
    dictionaryStart(out, kStyleDictionary, kRootDictionary);
    out.text(3, "FOUR");
    out.handle(350, kFourStyle);
    out.text(3, "STANDARD");
    out.handle(350, kStandardStyle);
    mlineStyle(out, kStandardStyle, "STANDARD", {0.5, -0.5});
    mlineStyle(out, kFourStyle, "FOUR", {0.6, 0.2, -0.2, -0.6});
    out.text(0, "ENDSEC");
    out.text(0, "EOF");
}

// The entities of the mixed drawing, spread over a square of about
// 100 units per entity side.
void mixedEntities(DxfOut& out, long count)
{
    Coordinates random;
    const double side = std::sqrt(double(count)) * 100.0 + 100.0;
    for (long i = 0; i < count; ++i) {
        const std::uint64_t handle = kFirstEntity + std::uint64_t(i);
        const char* layer = kLayers[i % kLayerCount];
        const double x = random.next(side), y = random.next(side);
        switch (i % 6) {
        case 0:
            entityStart(out, "LINE", handle, kModelSpace, layer, "AcDbLine");
            out.point(10, x, y, 0);
            out.point(11, x + random.next(50), y + random.next(50), 0);
            break;
        case 1:
            entityStart(out, "ARC", handle, kModelSpace, layer, "AcDbCircle");
            out.point(10, x, y, 0);
            out.real(40, 1 + random.next(20));
            out.text(100, "AcDbArc");
            out.real(50, random.next(180));
            out.real(51, 180 + random.next(180));
            break;
        case 2:
            entityStart(out, "CIRCLE", handle, kModelSpace, layer, "AcDbCircle");
            out.point(10, x, y, 0);
            out.real(40, 1 + random.next(20));
            break;
        case 3:
            entityStart(out, "LWPOLYLINE", handle, kModelSpace, layer, "AcDbPolyline");
            out.integer(90, 20);
            out.integer(70, 0);
            for (int v = 0; v < 20; ++v) {
                out.real(10, x + v * 5 + random.next(2));
                out.real(20, y + random.next(30));
            }
            break;
        case 4:
            entityStart(out, "TEXT", handle, kModelSpace, layer, "AcDbText");
            out.point(10, x, y, 0);
            out.real(40, 2.5);
            out.text(1, "Room " + std::to_string(i / 6));
            out.text(100, "AcDbText");
            break;
        default:
            entityStart(out, "INSERT", handle, kModelSpace, layer, "AcDbBlockReference");
            out.text(2, "SMALL");
            out.point(10, x, y, 0);
            break;
        }
    }
}

// Multilines of 10 vertices in the style FOUR (offsets 0.6 to -0.6, top
// justification), with axes, miters and lists as a host computes them. The
// vertices zigzag by varying heights, so that no two miters are alike.
void multilineEntities(DxfOut& out, long count)
{
    Coordinates random;
    constexpr int kVertices = 10;
    constexpr double kOffsets[] = {0.6, 0.2, -0.2, -0.6};
    for (long m = 0; m < count; ++m) {
        double xs[kVertices], ys[kVertices];
        const double x0 = double(m % 320) * 100.0, y0 = double(m / 320) * 40.0;
        for (int v = 0; v < kVertices; ++v) {
            xs[v] = x0 + v * 9.0 + random.next(3);
            ys[v] = y0 + (v % 2) * 12.0 + random.next(5);
        }
        entityStart(out, "MLINE", kFirstEntity + std::uint64_t(m), kModelSpace, kLayers[m % kLayerCount], "AcDbMline");
        out.text(2, "FOUR");
        out.handle(340, kFourStyle);
        out.real(40, 1);
        out.integer(70, 0);
        out.integer(71, 1);
        out.integer(72, kVertices);
        out.integer(73, 4);
        out.point(10, xs[0], ys[0], 0);
        out.point(210, 0, 0, 1);
        double axisX = 0, axisY = 0;
        for (int v = 0; v < kVertices; ++v) {
            const double previousX = axisX, previousY = axisY;
            if (v + 1 < kVertices) {
                const double dx = xs[v + 1] - xs[v], dy = ys[v + 1] - ys[v], length = std::hypot(dx, dy);
                axisX = dx / length;
                axisY = dy / length;
            }
            // The miter halves the turn: the sum of the left normals of the
            // segments meeting at the vertex.
            double miterX = -axisY, miterY = axisX;
            if (v > 0 && v + 1 < kVertices) {
                miterX += -previousY;
                miterY += previousX;
                const double length = std::hypot(miterX, miterY);
                miterX /= length;
                miterY /= length;
            }
            const double stretch = 1.0 / (miterX * -axisY + miterY * axisX);
            out.point(11, xs[v], ys[v], 0);
            out.point(12, axisX, axisY, 0);
            out.point(13, miterX, miterY, 0);
            for (const double offset : kOffsets) {
                const double along = (offset - kOffsets[0]) * stretch;
                out.integer(74, 2);
                out.real(41, along);
                out.real(41, 0);
                out.integer(75, 2);
                out.real(42, along);
                out.real(42, 0);
            }
        }
    }
}

int usage()
{
    std::fputs("usage: generate_drawing mixed|multilines COUNT FILE\n", stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
        return usage();
    const std::string_view kind = argv[1];
    const long count = std::atol(argv[2]);
    if ((kind != "mixed" && kind != "multilines") || count < 0)
        return usage();
    std::FILE* file = std::strcmp(argv[3], "-") == 0 ? stdout : std::fopen(argv[3], "wb");
    if (!file) {
        std::perror(argv[3]);
        return 1;
    }
    {
        DxfOut out(file);
        header(out, kFirstEntity + std::uint64_t(count));
        tables(out);
        blocks(out);
        out.text(0, "SECTION");
        out.text(2, "ENTITIES");
        if (kind == "mixed")
            mixedEntities(out, count);
        else
            multilineEntities(out, count);
        out.text(0, "ENDSEC");
        objects(out);
    }
    return std::fclose(file) == 0 ? 0 : 1;
}

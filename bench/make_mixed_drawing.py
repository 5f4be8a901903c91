"""Writes a mixed drawing for benchmarks: LINE, ARC, CIRCLE, LWPOLYLINE of
20 vertices, TEXT and INSERT of a small block in equal shares, one entity
per cell of a square grid, on four layers. The same count always gives the
same file.

    make_mixed_drawing.py ENTITIES FILE.dxf

ezdxf makes the drawing's frame (header, tables, the block, objects) and
reads every file it writes; the entities are written here in the form ezdxf
writes them, as ezdxf would take minutes for a million of them."""
import io
import math
import random
import sys

import ezdxf

CELL = 10.0
LAYERS = [("WALLS", 7), ("DOORS", 1), ("FURNITURE", 3), ("TEXT", 5)]
BLOCK = "SYMBOL"


def number(value):
    # ezdxf writes reals as Python prints them.
    return repr(float(round(value, 6)))


def frame():
    doc = ezdxf.new("R2000")
    for name, color in LAYERS:
        doc.layers.add(name, color=color)
    block = doc.blocks.new(BLOCK)
    block.add_lwpolyline([(-1, -1), (1, -1), (1, 1), (-1, 1)], close=True)
    block.add_circle((0, 0), 0.8)
    block.add_line((-1, -1), (1, 1))
    block.add_line((-1, 1), (1, -1))
    return doc


class EntityWriter:
    def __init__(self, out, first_handle, owner):
        self.out = out
        self.handle = first_handle
        self.owner = owner

    def common(self, kind, layer, subclass):
        self.out.write(f"  0\n{kind}\n  5\n{self.handle:X}\n330\n{self.owner}\n100\nAcDbEntity\n  8\n{layer}\n"
                       f"100\n{subclass}\n")
        self.handle += 1

    def line(self, layer, x0, y0, x1, y1):
        self.common("LINE", layer, "AcDbLine")
        self.out.write(f" 10\n{number(x0)}\n 20\n{number(y0)}\n 30\n0.0\n 11\n{number(x1)}\n 21\n{number(y1)}\n"
                       f" 31\n0.0\n")

    def circle(self, layer, x, y, r, kind="CIRCLE"):
        self.common(kind, layer, "AcDbCircle")
        self.out.write(f" 10\n{number(x)}\n 20\n{number(y)}\n 30\n0.0\n 40\n{number(r)}\n")

    def arc(self, layer, x, y, r, start, end):
        self.circle(layer, x, y, r, "ARC")
        self.out.write(f"100\nAcDbArc\n 50\n{number(start)}\n 51\n{number(end)}\n")

    def lwpolyline(self, layer, points):
        self.common("LWPOLYLINE", layer, "AcDbPolyline")
        self.out.write(f" 90\n{len(points)}\n 70\n0\n")
        self.out.write("".join(f" 10\n{number(x)}\n 20\n{number(y)}\n" for x, y in points))

    def text(self, layer, x, y, height, value):
        self.common("TEXT", layer, "AcDbText")
        self.out.write(f" 10\n{number(x)}\n 20\n{number(y)}\n 30\n0.0\n 40\n{number(height)}\n  1\n{value}\n"
                       f"100\nAcDbText\n")

    def insert(self, layer, x, y, scale, angle):
        self.common("INSERT", layer, "AcDbBlockReference")
        self.out.write(f"  2\n{BLOCK}\n 10\n{number(x)}\n 20\n{number(y)}\n 30\n0.0\n 41\n{number(scale)}\n"
                       f" 42\n{number(scale)}\n 43\n1.0\n 50\n{number(angle)}\n")


def write_entities(writer, count):
    columns = max(1, math.ceil(math.sqrt(count)))
    rand = random.Random(count)
    for i in range(count):
        x = (i % columns) * CELL + rand.uniform(1, 3)
        y = (i // columns) * CELL + rand.uniform(1, 3)
        layer = LAYERS[(i // 6) % len(LAYERS)][0]
        kind = i % 6
        if kind == 0:
            writer.line(layer, x, y, x + rand.uniform(2, 6), y + rand.uniform(0, 6))
        elif kind == 1:
            start = rand.uniform(0, 360)
            writer.arc(layer, x + 3, y + 3, rand.uniform(1, 3), start, start + rand.uniform(30, 300))
        elif kind == 2:
            writer.circle(layer, x + 3, y + 3, rand.uniform(1, 3))
        elif kind == 3:
            writer.lwpolyline(layer, [(x + v * 0.3, y + rand.uniform(0, 6)) for v in range(20)])
        elif kind == 4:
            writer.text(layer, x, y + 2, rand.uniform(0.8, 1.6), f"N{i}")
        else:
            writer.insert(layer, x + 3, y + 3, rand.uniform(1, 2.5), rand.uniform(0, 90))


def main():
    count = int(sys.argv[1])
    doc = frame()
    template = io.StringIO()
    doc.write(template)
    text = template.getvalue()
    seed_at = text.index("$HANDSEED\n  5\n") + len("$HANDSEED\n  5\n")
    seed_end = text.index("\n", seed_at)
    first = int(text[seed_at:seed_end], 16)
    marker = "  2\nENTITIES\n"
    entities_at = text.index(marker) + len(marker)
    with open(sys.argv[2], "w", encoding="utf-8", newline="\n", buffering=1 << 20) as out:
        out.write(text[:seed_at] + f"{first + count:X}" + text[seed_end:entities_at])
        write_entities(EntityWriter(out, first, doc.modelspace().layout_key), count)
        out.write(text[entities_at:])


if __name__ == "__main__":
    main()

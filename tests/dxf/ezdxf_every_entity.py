"""Writes, with ezdxf, a drawing of every entity kind ezdxf makes, in the
DXF version named by the second argument (R12, R2000 ... R2018), as the
first argument. Each kind sits in its own cell of a grid of squares of
side 10, six a row, so that a picture of the drawing shows whether each
was drawn; dots on the grid's outer corners fix the picture's extents.
Prints as JSON the cells, kind by kind, as [column, row], and the grid's
width and height."""
import json
import sys

import ezdxf
from ezdxf.math import Vec3
from ezdxf.render import forms

path, version = sys.argv[1], sys.argv[2]
doc = ezdxf.new(version, setup=True)
msp = doc.modelspace()
old = version == "R12"
cells = {}


def cell(kind):
    """The origin of the next free cell, noted under kind."""
    index = len(cells)
    column, row = index % 6, index // 6
    cells[kind] = [column, row]
    return Vec3(column * 10, row * 10, 0)


o = cell("LINE")
msp.add_line(o + (1, 1), o + (8, 8))
o = cell("POINT")
for dx in range(1, 9):
    msp.add_point(o + (dx, 5))
o = cell("CIRCLE")
msp.add_circle(o + (5, 5), 3.5)
o = cell("ARC")
msp.add_arc(o + (5, 5), 3.5, 0, 270)
o = cell("POLYLINE2D")
msp.add_polyline2d([o + (1, 1), o + (8, 1), o + (8, 8), o + (1, 8)], close=True)
o = cell("POLYLINE3D")
msp.add_polyline3d([o + (1, 1, 0), o + (8, 4, 2), o + (1, 8, 4)])
o = cell("POLYMESH")
mesh = msp.add_polymesh((3, 3))
for m in range(3):
    for n in range(3):
        mesh.set_mesh_vertex((m, n), o + (1 + 3.5 * m, 1 + 3.5 * n, m * n * 0.5))
o = cell("POLYFACE")
face = msp.add_polyface()
face.append_faces([[o + (1, 1), o + (8, 1), o + (8, 8)], [o + (1, 1), o + (8, 8), o + (1, 8)]])
o = cell("SOLID")
msp.add_solid([o + (1, 1), o + (8, 1), o + (1, 8), o + (8, 8)])
o = cell("TRACE")
msp.add_trace([o + (1, 4), o + (8, 4), o + (1, 6), o + (8, 6)])
o = cell("3DFACE")
msp.add_3dface([o + (1, 1), o + (8, 1), o + (8, 8), o + (1, 8)])
o = cell("TEXT")
msp.add_text("Text", height=2.5, dxfattribs={"insert": o + (1, 4), "width": 0.9, "oblique": 15})
o = cell("TEXT_ALIGNED")
msp.add_text("Mid", height=2).set_placement(o + (5, 5), align=ezdxf.enums.TextEntityAlignment.MIDDLE_CENTER)
o = cell("INSERT_ATTRIB")
block = doc.blocks.new("TAG")
block.add_circle((0, 0), 1)
block.add_attdef("NAME", (1.5, 0), "?", dxfattribs={"height": 1.5})
insert = msp.add_blockref("TAG", o + (3, 5))
insert.add_auto_attribs({"NAME": "A1"})
o = cell("DIMENSION")
dimension = msp.add_linear_dim(base=o + (1, 7), p1=o + (1, 2), p2=o + (8, 2))
dimension.render()
if not old:
    o = cell("MTEXT")
    msp.add_mtext("Two\\Plines", dxfattribs={"insert": o + (1, 8), "char_height": 2, "width": 8})
    o = cell("ELLIPSE")
    msp.add_ellipse(o + (5, 5), major_axis=(4, 0), ratio=0.5)
    o = cell("SPLINE")
    msp.add_spline([o + (1, 1), o + (3, 8), o + (6, 2), o + (8, 8)])
    o = cell("LWPOLYLINE")
    msp.add_lwpolyline([o + (1, 1), o + (8, 1), o + (8, 8)], dxfattribs={"const_width": 0.3})
    o = cell("HATCH_SOLID")
    solid = msp.add_hatch(color=3)
    solid.paths.add_polyline_path([o + (1, 1), o + (8, 1), o + (8, 8), o + (1, 8)])
    o = cell("HATCH_PATTERN")
    pattern = msp.add_hatch(color=5)
    pattern.set_pattern_fill("ANSI31", scale=0.5)
    pattern.paths.add_polyline_path([o + (1, 1), o + (8, 1), o + (8, 8), o + (1, 8)])
    o = cell("LEADER")
    msp.add_leader([o + (1, 1), o + (4, 7), o + (8, 7)])
    o = cell("MLINE")
    msp.add_mline([o + (1, 1), o + (8, 1), o + (8, 8)])
    o = cell("RAY")
    msp.add_ray(o + (5, 5), (1, 1))
    o = cell("XLINE")
    msp.add_xline(o + (5, 5), (1, -1))
    o = cell("MESH")
    cube = forms.cube().scale_uniform(6).translate(o + (4, 4, 0))
    cube.render_mesh(msp)
    o = cell("WIPEOUT")
    msp.add_wipeout([o + (1, 1), o + (8, 1), o + (8, 8), o + (1, 8)])
rows = (len(cells) + 5) // 6
msp.add_point((0, 0))
msp.add_point((60, rows * 10))
doc.saveas(path)
print(json.dumps({"cells": cells, "width": 60, "height": rows * 10}))

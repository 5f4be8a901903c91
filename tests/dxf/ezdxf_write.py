"""Writes a drawing with ezdxf: multilines of several elements, closed ones,
true colours, and entities and objects the host does not model."""
import sys

import ezdxf

doc = ezdxf.new("R2010", setup=True)
msp = doc.modelspace()
doc.layers.add("WALLS", color=1, linetype="DASHED")

three = doc.mline_styles.new("THREE")
three.dxf.flags = 1 | 2 | 16 | 1024
three.dxf.fill_color = 4
three.elements.append(0.5, 1, "BYLAYER")
three.elements.append(0.0, 3, "DASHED")
three.elements.append(-0.5, 5, "BYLAYER")

closed = msp.add_mline([(0, 0), (10, 0), (10, 10), (0, 8)], dxfattribs={"style_name": "THREE", "layer": "WALLS"},
                       close=True)
closed.dxf.true_color = 0x336699
msp.add_mline([(0, 0), (5, 5), (20, 5)], dxfattribs={"scale_factor": 2.5, "justification": 1})
msp.add_text("hello", dxfattribs={"height": 2, "true_color": 0xFF8000})
msp.add_spline([(0, 0), (1, 2), (3, 1), (4, 4)])
hatch = msp.add_hatch(color=2)
hatch.paths.add_polyline_path([(0, 0), (1, 0), (1, 1)], is_closed=True)
msp.add_lwpolyline([(0, 0, 0, 0, 0.5), (3, 0, 0, 0, 0), (3, 3, 0, 0, 0)], format="xyseb", dxfattribs={"closed": True})
msp.add_arc((1, 1), 2, 30, 120)
msp.add_circle((4, 4), 1.5, dxfattribs={"color": 6})
msp.add_line((0, 0), (7, 3)).set_xdata("EZDXF", [(1000, "kept"), (1040, 3.5)])
doc.appids.new("EZDXF")
block = doc.blocks.new("MARK")
block.add_circle((0, 0), 0.5)
block.add_text("M")
msp.add_blockref("MARK", (2, 2))
doc.layouts.new("Sheet").add_line((0, 0), (1, 1))
xrecord = doc.rootdict.add_xrecord("KALDO_TEST")
xrecord.reset([(1, "text"), (40, 1.25)])
doc.saveas(sys.argv[1])

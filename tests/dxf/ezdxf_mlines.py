"""Reads a drawing with ezdxf and prints, as JSON, its audit, its current
multiline style and every multiline: style name, flags, and per vertex
location, direction, miter and the element and fill parameter lists."""
import json
import sys

import ezdxf

doc = ezdxf.readfile(sys.argv[1])
auditor = doc.audit()
mlines = []
for mline in doc.modelspace().query("MLINE"):
    mlines.append({
        "handle": mline.dxf.handle,
        "style": mline.dxf.style_name,
        "flags": mline.dxf.flags,
        "scale": mline.dxf.scale_factor,
        "justification": mline.dxf.justification,
        "vertices": [{
            "location": list(v.location),
            "direction": list(v.line_direction),
            "miter": list(v.miter_direction),
            "element": [list(p) for p in v.line_params],
            "fill": [list(p) for p in v.fill_params],
        } for v in mline.vertices],
    })
print(json.dumps({
    "errors": [e.message for e in auditor.errors],
    "fixes": [f.message for f in auditor.fixes],
    "cmlstyle": doc.header.get("$CMLSTYLE", ""),
    "mlines": mlines,
}))

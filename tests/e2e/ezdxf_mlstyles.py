"""Reads a drawing with ezdxf and prints, as JSON, its multiline styles by
name: description, flags, cap angles, fill colour and elements."""
import json
import sys

import ezdxf

doc = ezdxf.readfile(sys.argv[1])
styles = {}
for style in doc.objects.query("MLINESTYLE"):
    styles[style.dxf.name] = {
        "description": style.dxf.description,
        "flags": style.dxf.flags,
        "start_angle": style.dxf.start_angle,
        "end_angle": style.dxf.end_angle,
        "fill_color": style.dxf.fill_color,
        "elements": [[e.offset, e.color, e.linetype] for e in style.elements],
    }
print(json.dumps(styles))

"""Reads a drawing with ezdxf and prints, as JSON, its audit, the names of
its layers and multiline styles and the texts of its TEXT entities, as
ezdxf reads them and as its recovering reader reads them (which decodes
"\\U+XXXX" escapes too); then saves the drawing again in R2000 and R2018
under the names given, and writes a drawing of its own in R2000 with the
same names."""
import json
import sys

import ezdxf
from ezdxf import recover


def names(doc):
    return {
        "layers": sorted(layer.dxf.name for layer in doc.layers),
        "styles": sorted(name for name, _ in doc.mline_styles),
        "texts": sorted(text.dxf.text for text in doc.modelspace().query("TEXT")),
    }


doc = ezdxf.readfile(sys.argv[1])
auditor = doc.audit()
recovered, _ = recover.readfile(sys.argv[1])
print(json.dumps({
    "errors": [e.message for e in auditor.errors],
    "fixes": [f.message for f in auditor.fixes],
    "codepage": doc.header.get("$DWGCODEPAGE", ""),
    "read": names(doc),
    "recovered": names(recovered),
}))
recovered.saveas(sys.argv[2])
recovered.dxfversion = "R2018"
recovered.saveas(sys.argv[3])

own = ezdxf.new("R2000")
read = names(recovered)
for layer in read["layers"]:
    if layer not in own.layers:
        own.layers.add(layer)
for style in read["styles"]:
    if style not in own.mline_styles:
        own.mline_styles.new(style)
for text in read["texts"]:
    own.modelspace().add_text(text)
own.saveas(sys.argv[4])

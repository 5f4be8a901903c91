"""Reads a drawing with ezdxf and prints, as JSON, its version, its audit, how many
entities of each kind model space holds, the kinds of line looks (kind,
layer, colour, linetype) and the extents of model space."""
import json
import sys
from collections import Counter

import ezdxf
from ezdxf import bbox

doc = ezdxf.readfile(sys.argv[1])
auditor = doc.audit()
msp = doc.modelspace()
kinds = Counter(e.dxftype() for e in msp)
looks = sorted({f"{e.dxftype()} {e.dxf.layer} {e.dxf.color} {e.dxf.linetype}" for e in msp})
box = bbox.extents(msp)
print(json.dumps({
    "version": doc.dxfversion,
    "errors": [e.message for e in auditor.errors],
    "fixes": [f.message for f in auditor.fixes],
    "kinds": kinds,
    "looks": looks,
    "extents": [box.extmin.x, box.extmin.y, box.extmax.x, box.extmax.y] if box.has_data else [],
}))

"""Reads a drawing with ezdxf and prints, as JSON, its version, how many
entities of each kind its model space holds (those of the old polyline form as
POLYLINE) and the tag and text of every attribute of its block
references."""
import collections
import json
import sys

import ezdxf

doc = ezdxf.readfile(sys.argv[1])
kinds = collections.Counter(entity.dxftype() for entity in doc.modelspace())
attributes = [[attrib.dxf.tag, attrib.dxf.text] for insert in doc.modelspace().query("INSERT")
              for attrib in insert.attribs]
print(json.dumps({"version": doc.dxfversion, "kinds": kinds, "attributes": attributes}))

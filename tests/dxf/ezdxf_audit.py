"""Reads each drawing named on the command line with ezdxf and prints, as
one JSON object, what its audit found in each: the errors and the fixes it
made, or why the file could not be read. An empty list means nothing."""
import json
import sys

import ezdxf

findings = {}
for path in sys.argv[1:]:
    try:
        doc = ezdxf.readfile(path)
    except Exception as error:  # every failure to read is a finding
        findings[path] = ["cannot read: " + str(error)]
        continue
    auditor = doc.audit()
    findings[path] = [e.message for e in auditor.errors] + [f.message for f in auditor.fixes]
print(json.dumps(findings))

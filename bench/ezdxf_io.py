"""Times ezdxf reading a drawing and writing it again; prints JSON with the
seconds of each and the peak memory of this process in megabytes."""
import json
import resource
import sys
import time

import ezdxf

start = time.perf_counter()
doc = ezdxf.readfile(sys.argv[1])
read = time.perf_counter() - start
start = time.perf_counter()
doc.saveas(sys.argv[2])
write = time.perf_counter() - start
print(json.dumps({
    "read_seconds": read,
    "write_seconds": write,
    "peak_mb": resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024 / 1e6,
}))

"""Reads drawings with ezdxf and checks a transform by its own arithmetic.

Arguments: BEFORE_EXPLODED AFTER_EXPLODED TRANSFORM [BEFORE AFTER]

TRANSFORM is JSON: {"kind": "move", "dx", "dy"}, {"kind": "rotate", "cx",
"cy", "degrees"}, {"kind": "scale", "cx", "cy", "k"}, {"kind": "mirror", "ax",
"ay", "bx", "by"} or {"kind": "stretch", "box": [x0, y0, x1, y1], "dx", "dy"}
(points inside the box move); "copies": true when the drawing after holds
the originals besides their transformed copies.

Every LINE, ARC and HATCH loop of the exploded drawing before, each point
transformed here, must be one of the exploded drawing after (and with
copies, the originals too), and nothing else, within 1e-10. With the drawings
themselves, every MLINE's vertices, directions and miters must be the
transformed ones, its scale the old one times the factor (turned round by a
mirror), its element and fill lists the old ones times the factor.

Prints JSON: both audits' errors and fixes, the pieces counted, the pieces
not matched either way, and the multilines' mismatches."""
import json
import math
import sys

import ezdxf

TOLERANCE = 1e-10


def transformer(spec):
    kind = spec["kind"]
    if kind == "move":
        return lambda x, y: (x + spec["dx"], y + spec["dy"])
    if kind == "rotate":
        a = math.radians(spec["degrees"])
        cx, cy = spec["cx"], spec["cy"]
        return lambda x, y: (cx + (x - cx) * math.cos(a) - (y - cy) * math.sin(a),
                             cy + (x - cx) * math.sin(a) + (y - cy) * math.cos(a))
    if kind == "scale":
        k, cx, cy = spec["k"], spec["cx"], spec["cy"]
        return lambda x, y: (cx + k * (x - cx), cy + k * (y - cy))
    if kind == "mirror":
        ax, ay, bx, by = spec["ax"], spec["ay"], spec["bx"], spec["by"]
        length = math.hypot(bx - ax, by - ay)
        ux, uy = (bx - ax) / length, (by - ay) / length

        def mirror(x, y):
            along = (x - ax) * ux + (y - ay) * uy
            return (2 * (ax + along * ux) - x, 2 * (ay + along * uy) - y)
        return mirror
    if kind == "stretch":
        x0, y0, x1, y1 = spec["box"]
        return lambda x, y: (x + spec["dx"], y + spec["dy"]) if x0 <= x <= x1 and y0 <= y <= y1 else (x, y)
    raise ValueError(kind)


def factor(spec):
    return spec["k"] if spec["kind"] == "scale" else 1.0


def near(p, q):
    return math.hypot(p[0] - q[0], p[1] - q[1]) <= TOLERANCE


def xy(v):
    return v[0], v[1]


def pieces(doc, move):
    """(kind, look, points): points ordered as the kind compares them."""
    found = []
    for e in doc.modelspace():
        look = (e.dxf.layer, e.dxf.color, e.dxf.linetype)
        if e.dxftype() == "LINE":
            found.append(("LINE", look, [move(*xy(e.dxf.start)), move(*xy(e.dxf.end))]))
        elif e.dxftype() == "ARC":
            c = e.dxf.center
            sweep = (e.dxf.end_angle - e.dxf.start_angle) % 360 or 360
            mid = math.radians(e.dxf.start_angle + sweep / 2)
            r = e.dxf.radius
            found.append(("ARC", look, [move(*xy(e.start_point)), move(c.x + r * math.cos(mid), c.y + r * math.sin(mid)),
                                        move(*xy(e.end_point)), move(c.x, c.y)]))
        elif e.dxftype() == "HATCH":
            for path in e.paths:
                found.append(("HATCH", look, [move(v[0], v[1]) for v in path.vertices]))
        else:
            found.append((e.dxftype(), look, []))
    return found


def same(a, b):
    if a[0] != b[0] or a[1] != b[1] or len(a[2]) != len(b[2]):
        return False
    p, q = a[2], b[2]
    if a[0] == "HATCH":
        return all(any(near(x, y) for y in q) for x in p) and all(any(near(x, y) for y in p) for x in q)
    if a[0] == "ARC":
        # The middle and the centre where they were, the ends either way round.
        if not (near(p[1], q[1]) and near(p[3], q[3])):
            return False
        return (near(p[0], q[0]) and near(p[2], q[2])) or (near(p[0], q[2]) and near(p[2], q[0]))
    return (near(p[0], q[0]) and near(p[1], q[1])) or (near(p[0], q[1]) and near(p[1], q[0]))


def unmatched(expected, actual):
    left = list(actual)
    missing = []
    for piece in expected:
        for i, other in enumerate(left):
            if same(piece, other):
                del left[i]
                break
        else:
            missing.append(piece)
    return missing, left


def mline_mismatches(before, after, spec):
    move = transformer(spec)
    k = factor(spec)
    sign = -1.0 if spec["kind"] == "mirror" else 1.0
    problems = []
    old = list(before.modelspace().query("MLINE"))
    new = list(after.modelspace().query("MLINE"))
    if len(old) != len(new):
        return [f"{len(old)} multilines before, {len(new)} after"]

    def direction(v):
        a = move(0.0, 0.0)
        b = move(v[0], v[1])
        length = math.hypot(b[0] - a[0], b[1] - a[1])
        return ((b[0] - a[0]) / length, (b[1] - a[1]) / length)

    for m, n in zip(old, new):
        name = m.dxf.handle
        if abs(n.dxf.scale_factor - m.dxf.scale_factor * k * sign) > TOLERANCE:
            problems.append(f"{name}: scale {n.dxf.scale_factor}, not {m.dxf.scale_factor * k * sign}")
        for i, (v, w) in enumerate(zip(m.vertices, n.vertices)):
            checks = [("location", move(*xy(v.location)), w.location),
                      ("direction", direction(v.line_direction), w.line_direction),
                      ("miter", direction(v.miter_direction), w.miter_direction)]
            for what, expected, got in checks:
                if not near(expected, got):
                    problems.append(f"{name} vertex {i} {what}: {tuple(got)[:2]}, not {expected}")
            for what, lists, others in (("element", v.line_params, w.line_params), ("fill", v.fill_params, w.fill_params)):
                for e, (a, b) in enumerate(zip(lists, others)):
                    if len(a) != len(b) or any(abs(x * k - y) > TOLERANCE for x, y in zip(a, b)):
                        problems.append(f"{name} vertex {i} {what} {e}: {list(b)}, not {[x * k for x in a]}")
    return problems


def main():
    before = ezdxf.readfile(sys.argv[1])
    after = ezdxf.readfile(sys.argv[2])
    spec = json.loads(sys.argv[3])
    audits = [before.audit(), after.audit()]
    expected = pieces(before, transformer(spec))
    if spec.get("copies"):
        expected += pieces(before, lambda x, y: (x, y))
    actual = pieces(after, lambda x, y: (x, y))
    missing, extra = unmatched(expected, actual)
    report = {
        "errors": [e.message for a in audits for e in a.errors],
        "fixes": [f.message for a in audits for f in a.fixes],
        "pieces": len(actual),
        "missing": [f"{p[0]} {p[1]} {p[2]}" for p in missing],
        "extra": [f"{p[0]} {p[1]} {p[2]}" for p in extra],
        "mlines": [],
    }
    if len(sys.argv) > 5:
        report["mlines"] = mline_mismatches(ezdxf.readfile(sys.argv[4]), ezdxf.readfile(sys.argv[5]), spec)
    print(json.dumps(report))


main()

"""Compares what was found with what stood there, and says in what way it was missed."""

import statistics
from dataclasses import dataclass, field

TOLERANCE = 2
SIDES = ("left", "top", "right", "bottom")


def sides(rectangle):
    x, y, width, height = rectangle
    return (x, y, x + width, y + height)


def offsets(found, true):
    """By how much each side lies too far right or down."""
    return tuple(a - b for a, b in zip(sides(found), sides(true)))


def is_match(found, true, tolerance=TOLERANCE):
    return all(abs(offset) <= tolerance for offset in offsets(found, true))


def _common_area(a, b):
    (ax, ay, bx, by), (cx, cy, dx, dy) = sides(a), sides(b)
    return max(0, min(bx, dx) - max(ax, cx)) * max(0, min(by, dy) - max(ay, cy))


def likeness(a, b):
    common = _common_area(a, b)
    return common / (a[2] * a[3] + b[2] * b[3] - common)


def is_inside(inner, outer, tolerance=4):
    a, b = sides(inner), sides(outer)
    return all(a[i] >= b[i] - tolerance and a[i + 2] <= b[i + 2] + tolerance for i in (0, 1))


def visible_share(frame, above):
    """The part of a frame that no frame above covers, on a coarse grid."""
    step = 8
    x1, y1, x2, y2 = sides(frame)
    points = [(x, y) for x in range(x1 + step // 2, x2, step) for y in range(y1 + step // 2, y2, step)]
    covering = [sides(other) for other in above]
    clear = sum(not any(a <= x < c and b <= y < d for a, b, c, d in covering) for x, y in points)
    return clear / len(points) if points else 0


@dataclass
class Verdict:
    """Of one capture."""

    place: dict  # what the table groups by
    is_primary_right: bool = False
    true_count: int = 0
    found_count: int = 0
    visible_count: int = 0
    visible_found_count: int = 0
    detected_count: int = 0
    primary_miss: str = ""
    outline_miss: str = ""
    slightly_off: dict = field(default_factory=dict)  # sides of that outline, and by how much outward
    margin_source: str = ""
    shadow_kinds: list = field(default_factory=list)
    shadow_errors: list = field(default_factory=list)  # of the margins, of left, top, right and bottom
    reading_errors: list = field(default_factory=list)  # of the sides that were read as shadows


def rectangle_of(detected):
    return tuple(detected[key] for key in ("x", "y", "width", "height"))


def judge(place, windows, report, shadow, scale):
    """`windows` are the true ones, the lowest first; `shadow` is what is drawn around the frontmost."""
    frames = [window.frame for window in windows]
    found = [rectangle_of(one) for one in report["windows"]]
    primary = report["windows"][report["primary"]] if report["primary"] is not None else None
    verdict = Verdict(place, true_count=len(frames), detected_count=len(found))
    for i, frame in enumerate(frames):
        is_found = any(is_match(one, frame) for one in found)
        is_half_visible = visible_share(frame, frames[i + 1:]) >= 0.5
        verdict.found_count += is_found
        verdict.visible_count += is_half_visible
        verdict.visible_found_count += is_half_visible and is_found
    front = windows[-1]
    hits = [one for one in report["windows"] if is_match(rectangle_of(one), front.frame)]
    verdict.is_primary_right = primary is not None and is_match(rectangle_of(primary), front.frame)
    if not verdict.is_primary_right:
        verdict.primary_miss = _primary_miss(windows, hits, primary, scale)
    if hits:
        _judge_shadow(verdict, hits[0], shadow, report)
    else:
        verdict.outline_miss = _outline_miss(verdict, front, found, scale)
    return verdict


def _primary_miss(windows, hits, primary, scale):
    front, others = windows[-1], windows[:-1]
    if primary is None:
        return "nothing was found" if not hits else "found, but enclosed by another rectangle, and there is no primary"
    if hits:
        reason = ("it is taken for covered" if hits[0]["isCovered"] else "it is taken for enclosed"
                  if hits[0]["isEnclosed"] else "another ranks before it")
        return f"found, but {reason}"
    rectangle = rectangle_of(primary)
    if any(is_match(rectangle, one.frame) for one in others):
        return "another window, whole"
    if is_match(rectangle, front.client):
        return "its content, without title bar and border"
    if is_match(rectangle, front.frame, 12 * scale):
        return "its outline, a few points off"
    if is_inside(rectangle, front.frame):
        return "a part of it"
    if any(is_inside(rectangle, one.frame) for one in others):
        return "a part of another window"
    if any(is_match(rectangle, one.frame, 12 * scale) for one in others):
        return "another window, a few points off"
    return "a mixture of several outlines"


def _outline_miss(verdict, front, found, scale):
    """How the likest of what was found differs from the frontmost window."""
    likest = max(found, key=lambda one: likeness(one, front.frame), default=None)
    if likest is None:
        return "nothing was found"
    if likeness(likest, front.frame) < 0.3:
        return "nothing like it"
    words = []
    for side, offset, outward in zip(SIDES, offsets(likest, front.frame), (-1, -1, 1, 1)):
        if abs(offset) > 12 * scale:
            words.append(side + " elsewhere")
        elif abs(offset) > TOLERANCE:
            words.append(side + " slightly off")
            verdict.slightly_off[side] = offset * outward
    return ", ".join(words)


def _judge_shadow(verdict, detected, shadow, report):
    verdict.margin_source = detected["shadow"]["source"]
    x1, y1, x2, y2 = sides(rectangle_of(detected))
    room = (x1, y1, report["width"] - x2, report["height"] - y2)
    for side, reading, real, most in zip(SIDES, detected["sides"], shadow, room):
        verdict.shadow_kinds.append(reading["kind"])
        real = min(real, most)
        verdict.shadow_errors.append(detected["shadow"][side] - real)
        verdict.reading_errors.append(reading["extent"] - real if reading["kind"] == "shadow" else None)


def median(values):
    values = [value for value in values if value is not None]
    return f"{statistics.median(values):+g}" if values else "–"

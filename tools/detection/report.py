"""The tables."""

import collections

from verdicts import SIDES, median


def _share(part, whole):
    return f"{part}/{whole}" if whole else "–"


def _sums(results):
    """Frontmost primary, found, found of those at least half visible."""
    return (_share(sum(one.is_primary_right for one in results), len(results)),
            _share(sum(one.found_count for one in results), sum(one.true_count for one in results)),
            _share(sum(one.visible_found_count for one in results), sum(one.visible_count for one in results)))


def _row(*cells):
    print("| " + " | ".join(str(cell) for cell in cells) + " |")


def _head(*cells):
    _row(*cells)
    _row(*["---"] * len(cells))


def _grouped(results, *keys):
    groups = collections.OrderedDict()
    for one in results:
        groups.setdefault(tuple(one.place[key] for key in keys), []).append(one)
    return groups


def _errors(results):
    return [error for one in results for error in one.shadow_errors]


def print_all(results, drawn, managers, counts):
    _print_main(results, counts)
    _print_totals(results)
    _print_shadows(results, drawn, managers)
    _print_misses(results)
    _print_slightly_off(results)


def _print_main(results, counts):
    print("## Windows\n\nIn each cell: frontmost is primary / of captures; found / of windows; found / of those at "
          "least half visible.\n")
    _head("Window manager", "Theme", "Scale", *(f"{count} windows" if count > 1 else "1 window" for count in counts),
          "Shadow error")
    for (manager, theme, scale), group in _grouped(results, "manager", "theme", "scale").items():
        cells = [", ".join(_sums([one for one in group if one.place["count"] == count])) for count in counts]
        _row(manager, theme, f"{scale}x", *cells, median(_errors(group)))
    cells = [", ".join(_sums([one for one in results if one.place["count"] == count])) for count in counts]
    _row("all", "", "", *cells, median(_errors(results)))
    print()


def _print_totals(results):
    print("## Totals\n")
    _head("", "Frontmost is primary", "Frontmost found", "Windows found", "Half visible ones found",
          "Detected for each true one")
    for key in ("manager", "theme", "scale", "count", "wallpaper", "program"):
        for (value,), group in sorted(_grouped(results, key).items()):
            _print_total(f"{key} {value}", group)
    _print_total("all", results)
    print()


def _print_total(name, group):
    primary, found, visible = _sums(group)
    front = _share(sum(not one.outline_miss for one in group), len(group))
    true = sum(one.true_count for one in group)
    each = f"{sum(one.detected_count for one in group) / true:.1f}" if true else "–"
    _row(name, primary, front, found, visible, each)


def _extents(extents):
    return " ".join(str(extent) for extent in extents)


def _print_shadows(results, drawn, managers):
    print("## Shadows\n\nOf frontmost windows that were found. Extents and errors are pixels of left, top, right and "
          "bottom; errors are medians, too wide positive; readings are sides that were read as a shadow.\n")
    for manager in managers:
        print(f"{manager.name}: shadows are {manager.shadow}.")
    print()
    _head("Window manager", "Theme", "Scale", "Drawn", "Drawn by programs", "Margins measured/estimated/none",
          "Sides shadow/clear/unreadable", "Error of margins", "Error of readings")
    for (manager, theme, scale), group in _grouped(results, "manager", "theme", "scale").items():
        extents = drawn.get(f"{manager}, {theme}, {scale}x", {})
        sources = collections.Counter(one.margin_source for one in group)
        kinds = collections.Counter(kind for one in group for kind in one.shadow_kinds)
        _row(manager, theme, f"{scale}x", _extents(extents.get(False, ())), _extents(extents.get(True, ())),
             "/".join(str(sources[source]) for source in ("measured", "estimated", "none")),
             "/".join(str(kinds[kind]) for kind in ("shadow", "clear", "unreadable")),
             " ".join(median(one.shadow_errors[i] for one in group if one.shadow_errors) for i in range(len(SIDES))),
             " ".join(median(one.reading_errors[i] for one in group if one.reading_errors) for i in range(len(SIDES))))
    print()


def _print_misses(results):
    for title, attribute in (("What is primary instead of the frontmost window", "primary_miss"),
                             ("How the likest of what was found differs from a frontmost window that was not",
                              "outline_miss")):
        print(f"## {title}\n")
        names = list(_grouped(results, "manager"))
        _head("", *(name for (name,) in names), "all", "for example")
        misses = collections.Counter(getattr(one, attribute) for one in results if getattr(one, attribute))
        for miss, count in misses.most_common():
            such = [one for one in results if getattr(one, attribute) == miss]
            by_manager = collections.Counter(one.place["manager"] for one in such)
            _row(miss, *(by_manager[name] for (name,) in names), count, such[0].place["name"])
        print()


def _print_slightly_off(results):
    print("## By how many pixels sides are slightly off, outward\n")
    _head("Window manager", "Scale", *SIDES)
    for (manager, scale), group in _grouped(results, "manager", "scale").items():
        offsets = [[one.slightly_off[side] for one in group if side in one.slightly_off] for side in SIDES]
        _row(manager, f"{scale}x", *(f"{median(those)} ({len(those)} times)" if those else "–" for those in offsets))
    print()

#!/usr/bin/env python3
"""Holds the sources against the plan of the house: who may include whom, how a file starts, how long it is.

Errors end with exit code 1; limits of size are warnings. A new source file needs a row in FLOORS, or stands in a
folder of FOLDERS.
"""

import pathlib
import re
import sys

# A file includes its own floor and lower ones. A row names files without their ending: header and source share a
# floor; a name with its ending stands before it. The library's names stand below roofline_model/.
FLOORS = """
0  host_interfaces/:   export ids fields.inc values records signals model message_ids.inc roofline_services
                       host_functions comparison progress tasks
1  roofline_model/:    row_data_access translation logging guard rabbit bag_helpers roof_names
2  roofline_model/:    threading operation_map gpu_operation_map_provider offload_operation_map
2  roofline_model/unified/:    value_getters roofline_options configurations gpu_levels offload_levels
3  roofline_model/:    memory_metrics dominating_type_helper dominating_roofs_task compute_roofs
3  roofline_model/unified/:    roofline_totals
4  roofline_model/:    selected_roofs cpu_roof_choice gpu_roof_choice instruction_mix_summary
4  roofline_model/unified/:    option_tables loop_params loop_params_tables cpu_loop_params_tables
                               device_loop_params_tables row_walk row_reader loops view_rect chart_range
5  roofline_model/:    row_roofline_helper row_roofline_engine row_memory_levels cpu_row_roofline_helper
                       gpu_row_roofline_helper offload_row_roofline_helper chart_widgets
6  roofline_model/:    row_result json_dumps roofline_summary program_summary loop_details analysis_kinds roof_catalogue
                       no_data_rules roofline_document engine_core program_dominance engine_face measured_engine
                       roofline_engine gpu_roofline_engine offload_roofline_engine report_helpers report_template
                       factories
"""

# What a whole folder sees beside itself: floors of the table up to a number, or the files named.
PUBLIC_FACE = ["host_interfaces/", "embedded_host/embedded_host.h", "roofline_model/factories.h",
               "roofline_model/report_helpers.h", "results_comparer/factories.h"]
FOLDERS = {
    "embedded_host/": ["host_interfaces/"],
    "results_comparer/": ["host_interfaces/"] + [f"roofline_model/{name}." for name in
                          ("row_data_access", "translation", "logging", "guard")],
    "cli/": PUBLIC_FACE,
    "examples/": PUBLIC_FACE,
    "benchmarks/": PUBLIC_FACE,
    "fuzz/": PUBLIC_FACE,
    "tests/": [""],  # sees everything
}

SUFFIXES = {".h", ".cpp", ".inc"}
MAX_LINES = 400
MAX_COLUMNS = 110
ROOT = pathlib.Path(__file__).resolve().parent.parent


def read_floors():
    floors = {}
    for row in re.finditer(r"^(\d)\s+(\S+):((?:.|\n(?!\d))*)", FLOORS, re.M):
        for name in row[3].split():
            floors[row[2] + name] = int(row[1])
    return floors


def floor_of(name, floors):
    return floors.get(name, floors.get(str(pathlib.PurePosixPath(name).with_suffix(""))))


def folder_of(name):
    return next((folder for folder in FOLDERS if name.startswith(folder)), None)


def may_include(name, target, floors):
    """Why `name` may not include `target`; None when it may."""
    folder = folder_of(name)
    if folder:
        if any(target.startswith(seen) for seen in [folder, *FOLDERS[folder]]):
            return None
        return f"{folder} sees only itself and {', '.join(FOLDERS[folder])}"
    own, other = floor_of(name, floors), floor_of(target, floors)
    if own is None or (other is not None and other <= own):
        return None  # a missing row is told on its own
    return f"floor {own} includes {'floor ' + str(other) if other is not None else folder_of(target)}"


def find_cycle(includes):
    """A list of headers that include each other in a circle, or None."""
    done = set()
    for start in includes:
        path, stack = [], [(start, 0)]
        while stack:
            name, depth = stack.pop()
            del path[depth:]
            if name in path:
                return path[path.index(name):] + [name]
            if name in done and depth:
                continue
            path.append(name)
            done.add(name)
            stack.extend((target, depth + 1) for target in includes.get(name, []))
    return None


def check_form(name, text, errors, warnings):
    lines = text.splitlines()
    # A source beside its header needs no second sentence.
    alone = not (name.endswith(".cpp") and (ROOT / name).with_suffix(".h").is_file())
    if alone and not re.match(r"// [A-Z\"'`0-9].*", text):
        errors.append(f"{name}:1: starts without a comment sentence that says what the file is for")
    if name.endswith(".h") and "#pragma once" not in lines:
        errors.append(f"{name}:1: no #pragma once")
    for number, line in enumerate(lines, 1):
        if not line.isascii():
            errors.append(f"{name}:{number}: not ASCII")
        if len(line) > MAX_COLUMNS and not name.endswith(".inc"):
            warnings.append(f"{name}:{number}: {len(line)} columns, the limit is {MAX_COLUMNS}")
    code = sum(1 for line in lines if line.strip() and not line.lstrip().startswith("//"))
    if code > MAX_LINES and "_tables" not in name and not name.startswith("tests/"):
        warnings.append(f"{name}: {code} lines of code, the limit is {MAX_LINES}")


def main():
    floors = read_floors()
    errors, warnings, includes = [], [], {}
    tops = sorted({name.split("/")[0] for name in [*floors, *FOLDERS, "results_comparer/"]})
    files = sorted(path.relative_to(ROOT).as_posix()
                   for top in tops for path in (ROOT / top).rglob("*") if path.suffix in SUFFIXES)
    for name in files:
        text = (ROOT / name).read_text(encoding="utf-8")
        check_form(name, text, errors, warnings)
        if folder_of(name) is None and floor_of(name, floors) is None:
            errors.append(f"{name}: on no floor; add it to FLOORS in scripts/check_layout.py")
        includes[name] = []
        for number, line in enumerate(text.splitlines(), 1):
            include = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
            if not include:
                continue
            target = include[1]
            if target not in files and not (ROOT / target).is_file():
                errors.append(f'{name}:{number}: "{target}" is no path from the root')
                continue
            includes[name].append(target)
            reason = may_include(name, target, floors)
            if reason:
                errors.append(f'{name}:{number}: includes "{target}": {reason}')
    stems = set(files) | {str(pathlib.PurePosixPath(name).with_suffix("")) for name in files}
    errors += [f"{name}: stands in FLOORS, but there is no such file" for name in floors if name not in stems]
    cycle = find_cycle(includes)
    if cycle:
        errors.append("headers include each other: " + " -> ".join(cycle))

    for line in warnings:
        print(f"warning: {line}")
    for line in errors:
        print(f"error: {line}")
    print(f"layout: {len(files)} files, {len(errors)} errors, {len(warnings)} warnings")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())

// The longer texts of --help: what the columns of an answer mean.
#pragma once

namespace cli {

inline constexpr auto kSummaryFooter =
    R"(Sums over all loops, over the elapsed time of the whole program: the bandwidth of each memory level,
and giga operations per second of each type that was counted, under the compute roof that stands for what the
program spends its time on (vectorised or not, float or integer, single or double precision). The roofs are
for the threads that the program used, an odd number raised to the next even one. "of roof" is what is reached
of the roof; above a roof it is more than 100 % and has a "!". A level whose traffic wasn't measured is
N/A.)";

inline constexpr auto kChartFooter =
    R"(--with OFFLOAD_RESULT shows each row where it was measured and where it would stand on a target, under
the roofs of the target. Rows find each other by their ids, as `roofline project` keeps them; rows of one side
only are counted. Points are those of self data over the traffic of the core, the one level that every row
knows, so of --config only the operations (f, i, b) count; a point above the roof of an outer level says that
the caches catch traffic. The table tells times, the speed-up that the projection promises, and what bounds
the row there. --svg draws an arrow from the measured point to the projected one, coloured by that bound.
JSON and CSV are this program's own then: "rows" with "measured" and "projected", "measured_only",
"projected_only", "totals"; in CSV "side" is both, measured or projected.)";

inline constexpr auto kRowsFooter =
    R"(Each row is taken by the operations that it has most of, float or integer, with its total data where
they are there, else with its self data; without callees the two are the same. Of --config the choice of call
stacks says whose time is shown: 0 with callees, 1 without, and then a row with callees is marked "with all
that it calls". Its point is its stored performance and its intensity against its traffic to the core. Its
compute roof follows from its cells: vectorised or not, FMA, type and width. Its roofs are for its own
threads or for --threads; odd numbers are taken as the next even one.

  limiting roof   the lowest memory roof that stands above the point, or the compute roof where that one
                  stands lower over the point. "above ROOF": not even the highest memory roof stands above
  of that roof    performance over the roof's height at the row's intensity; above a roof it is more than
                  100 % and has a "!"
  speed-up        the roof's height over the performance: how much faster the row would be on it, which does
                  not say that anything can be done about it
  nearest level roof
                  each memory level gives a point of its own, with that level's traffic: the level's roof or
                  the compute roof that stands nearest above any of them, by difference of performance
  remark          why a row has no point, no roof or no levels. "above ROOF: N %!", "on ROOF": the compute
                  roof doesn't stand above the point and was passed over; a row can't be faster than its
                  right roof, so its cells, the machine or the measurement are wrong

A row of a GPU is a kernel with its own data: neither --config nor threads matter to it. Its compute roof is
that of the type and the instructions that it executed most; without such a roof none limits the row. A row of
an offload result is a region on the target, likewise; its compute roof is that of its more frequent width.

With --level all each memory level has a line: its traffic, the intensity against it, the level's own roof,
how much of it is reached, and its share of the row's memory time, that is of traffic over bandwidth. A level
above its roof has no share. "nearest above" stands on the one line whose point has the nearest roof. A row
has levels when its float and its integer operations and each level's loads and stores are known, 0 included.

--sort distance puts the largest speed-up first. JSON and CSV have full precision, units in their keys, and
fractions in place of percent. A row without a point is listed with its cause.)";

inline constexpr auto kCompareFooter =
    R"(Which row of BASE is which row of NEW is told by names, places in the source and the like, in percent;
each row has at most one partner. Then each pair's time (self data, without callees), performance, intensity
and limiting roof, as `roofline rows --config 1` has them, first in BASE, then in NEW (the point of
a row with callees may be that with all that it calls: the remark says so); the rows without a partner; and
the totals.

  speed-up        time in BASE over time in NEW: above 1 it got faster. "~": the time changed by less than
                  --noise
  SUM/SUM         all time in BASE over all time in NEW, of the pairs and of all rows
  geometric mean  of the pairs' speed-ups

--svg draws each pair as an arrow from where it stood to where it stands: blue is faster, orange slower, grey
within the noise; rows without a partner are hollow. Where the two have different roofs, NEW's are dashed.

--fail-if slower=PERCENT ends with 3 when the time of any pair rose by more; without pairs the exit code is 1.
Rows of which only the source file and the kind are known to agree match by 50 %, the default threshold: for
a gate take --threshold 60 or more. --machine stands for the machines of both results.

JSON and CSV are this program's own and hold full precision, with units in the keys. JSON: "base" and "new"
(file, program, machine), "comparer", "threshold_percent", "noise_percent", "pairs" (match_percent,
speedup_factor, change: faster, slower, noise or unknown, and "base" and "new" with the columns of `roofline
rows`), "base_only" and "new_only" (the same columns), "totals". CSV: a line a pair or row; "side" is both,
base or new, and the columns of `roofline rows` stand there twice, with base_ and new_ before their names.)";

inline constexpr auto kRoofsFooter =
    R"(A value of your own counts for its thread set-up only (--threads, --packages, --single), in every chart
and table from then on. It is kept in the machine file beside the measured value: results that share a machine
file share its custom roofs. Odd numbers of threads are taken as the next even one.)";

inline constexpr auto kServeFooter =
    R"(Prints the page's address on stdout and serves it to this machine alone until Ctrl-C. The address holds
a secret: who has it can read the result and change custom roofs. When the result or its machine file changes,
the page loads itself again; while the new file can't be read, the page tells why and shows what it had.)";

}  // namespace cli

// The benchmarks of the program `roofline_benchmark`; each prints a table and returns an exit code.
#pragma once

int runChartBenchmark();
int runDominanceBenchmark();
int runRowBenchmark();
int runCompareBenchmark();
int runFilterBenchmark();
int runRocprofBenchmark();

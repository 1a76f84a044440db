// Running the worker: to its end, or until it is killed.
#pragma once

#include <chrono>
#include <string>
#include <vector>

struct WorkerRun {
    int status;  // as waitpid gives it
    std::vector<std::string> lines;
};

// Runs it to its end.
WorkerRun runWorker(const std::vector<std::string>& arguments);

// Kills it the given time after its first line.
WorkerRun killWorker(const std::vector<std::string>& arguments, std::chrono::microseconds after);

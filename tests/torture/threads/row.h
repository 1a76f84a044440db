// One row of the tables: how one exported function is called at random.
#pragma once

#include <vector>

namespace oam::torture {

class Caller;

struct Row {
    const char* name;       // the function
    unsigned weight;        // how often, compared with the others
    void (*make)(Caller&);  // calls it, unless there is nothing to call it with
};

// By family. Together they have every exported function that may be called by several threads.
std::vector<Row> AttachRows();
std::vector<Row> AlertRows();
std::vector<Row> ObjectRows();
std::vector<Row> DatabaseRows();
std::vector<Row> ConfigurationRows();
std::vector<Row> OperationRows();
std::vector<Row> QueryRows();
std::vector<Row> ShadowRows();

const std::vector<Row>& AllRows();

}  // namespace oam::torture

// Objects as plug-ins use them: the entries of "Thing", of which there are so many.
#include "row.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kOnlyMemory = {kNoMemory};

void openThing(World& world) { OpenInWorld(world, kThing, test::kProvider); }

void openThingWithQualifier(World& world) {
    openThing(world);
    (void)_oamDbSetQualifier(world.handle, "Name", "Type", "Object");
}

// So many handles of others, so that the table of handles is as full.
void openOthers(World& world) {
    for (int i = 0; i < world.Count(); ++i) {
        world.moreHandles.push_back(test::DbOpen("Supervisor", test::kRead));
    }
}

void closeOthers(World& world) {
    for (const unsigned long handle : world.moreHandles) (void)_oamDbCloseObject(handle);
    world.moreHandles.clear();
}

unsigned open(World& world, unsigned mode) {
    const unsigned code = _oamDbOpenObject(kThing, &world.handle, mode);
    if (code == OAM_SUCCESS) world.openObject = kThing;
    return code;
}

unsigned close(World& world) {
    const unsigned code = _oamDbCloseObject(world.handle);
    world.handle = 0;
    return code;
}

Row onThing(const char* name, const char* what, unsigned (*call)(World&),
            std::vector<unsigned> failures = {}, bool isVital = false) {
    return {.name = name,
            .what = what,
            .call = call,
            .failures = std::move(failures),
            .prepare = &openThing,
            .undo = &DiscardInWorld,
            .isVital = isVital};
}

Row withAccepted(Row row, bool (*accepts)(World&, const Outcome&)) {
    row.accepts = accepts;
    return row;
}

Row withPrepared(Row row, Row::Step prepare) {
    row.prepare = prepare;
    return row;
}

}  // namespace

std::vector<Row> DatabaseRows() {
    return {
        {.name = "_oamDbOpenObject",
         .what = "to read",
         .call = [](World& world) { return open(world, OAM_OPEN_READ); },
         .failures = {kNoMemory, OAMERR_FILE_READ_ERROR},
         .prepare = &openOthers,
         .undo =
             [](World& world) {
                 if (world.handle != 0) (void)close(world);
                 closeOthers(world);
             },
         .isVital = true},
        {.name = "_oamDbOpenObject",
         .what = "to write",
         .call = [](World& world) { return open(world, test::kProvider); },
         .failures = {kNoMemory, OAMERR_FILE_READ_ERROR},
         .undo = &DiscardInWorld},
        {.name = "_oamDbCloseObject",
         .what = "changed",
         .call = &close,
         .failures = {kNoMemory, OAMERR_FILE_WRITE_ERROR},
         .prepare =
             [](World& world) {
                 openThing(world);
                 (void)_oamDbSetKeyword(world.handle, "New", "value");
             },
         .undo =
             [](World& world) {
                 openThing(world);
                 (void)_oamDbRemoveKeyword(world.handle, "New");
                 (void)close(world);
             },
         .accepts = &LeavesItClosed,
         .isVital = true},
        {.name = "_oamDbCloseObject",
         .what = "to read",
         .call = &close,
         .prepare =
             [](World& world) {
                 openOthers(world);
                 OpenInWorld(world, kThing, test::kRead);
             },
         .undo = &closeOthers},
        onThing("_oamDbGetProviderMode", "",
                [](World& world) {
                    bool provider = false;
                    return unsigned{_oamDbGetProviderMode(world.handle, &provider)};
                }),
        onThing("_oamDbSetProviderMode", "",
                [](World& world) { return unsigned{_oamDbSetProviderMode(world.handle, false)}; }),
        withAccepted(
            onThing(
                "_oamDbSetKeyword", "new",
                [](World& world) {
                    return unsigned{_oamDbSetKeyword(world.handle, "New", "value")};
                },
                kOnlyMemory, true),
            [](World&, const Outcome& outcome) { return EmptiesValue(outcome, "New=value"); }),
        withAccepted(
            onThing("_oamDbSetKeyword", "changed",
                    [](World& world) {
                        return unsigned{_oamDbSetKeyword(world.handle, "Name", "Other")};
                    }),
            [](World&, const Outcome& outcome) { return EmptiesValue(outcome, "Name=Other"); }),
        onThing("_oamDbGetKeyword", "",
                [](World& world) {
                    return unsigned{
                        _oamDbGetKeyword(world.handle, "Name", world.text, sizeof world.text)};
                }),
        onThing(
            "_oamDbRemoveKeyword", "",
            [](World& world) {
                return unsigned{_oamDbRemoveKeyword(world.handle, world.LastEntry().c_str())};
            },
            kOnlyMemory, true),
        withAccepted(onThing(
                         "_oamDbSetQualifier", "",
                         [](World& world) {
                             return unsigned{
                                 _oamDbSetQualifier(world.handle, "Name", "Type", "Object")};
                         },
                         kOnlyMemory),
                     [](World&, const Outcome& outcome) {
                         return EmptiesValue(outcome, "Name?Type=Object");
                     }),
        withPrepared(onThing(
                         "_oamDbRemoveQualifier", "",
                         [](World& world) {
                             return unsigned{_oamDbRemoveQualifier(world.handle, "Name", "Type")};
                         },
                         kOnlyMemory),
                     &openThingWithQualifier),
        withPrepared(onThing(
                         "_oamDbGetQualifier", "",
                         [](World& world) {
                             return unsigned{_oamDbGetQualifier(world.handle, "Name", "Type",
                                                                world.text, sizeof world.text)};
                         },
                         kOnlyMemory),
                     &openThingWithQualifier),
        {"_oamDbEnumObjects", "",
         [](World& world) {
             return unsigned{_oamDbEnumObjects(world.Count(), world.text, sizeof world.text)};
         }},
        onThing("_oamDbEnumKeywords", "",
                [](World& world) {
                    return unsigned{_oamDbEnumKeywords(world.handle, world.Count() - 1, world.text,
                                                       sizeof world.text)};
                }),
    };
}

}  // namespace oam::torture

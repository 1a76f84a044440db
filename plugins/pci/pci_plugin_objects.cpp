// Objects and keywords: the entries that run under the service's manager lock.
#include <array>

#include "board_keywords.h"
#include "kit/answer_text.h"
#include "kit/computed_array.h"
#include "kit/keyword_store.h"
#include "pci_plugin.h"

namespace oam::pci {
namespace {

constexpr std::array kBoardMembers = {
    kit::ComputedMember<PciBoard>{".Name", "Object", "name made of bus and slot",
                                  [](const PciBoard& board) { return board.location.BoardName(); }},
    kit::ComputedMember<PciBoard>{".Product", "String", "product by the match table",
                                  [](const PciBoard& board) { return board.product; }},
    kit::ComputedMember<PciBoard>{
        ".Location.PCI.Bus", "Integer", "PCI bus, with the domain above its 8 bits",
        [](const PciBoard& board) { return std::to_string(board.location.bus); }},
    kit::ComputedMember<PciBoard>{
        ".Location.PCI.Slot", "Integer", "PCI slot",
        [](const PciBoard& board) { return std::to_string(board.location.slot); }},
};
constexpr kit::ComputedArray<PciBoard> kDetectedBoards("DetectedBoards",
                                                       "boards that the last detection found",
                                                       kBoardMembers);

constexpr std::array kProductMembers = {kit::ComputedMember<std::string>{
    "", "String", "a product of the match table", [](const std::string& name) { return name; }}};
constexpr kit::ComputedArray<std::string> kProducts("Products", "products of the match table",
                                                    kProductMembers);

bool isComputed(std::string_view keyword) {
    return kDetectedBoards.Holds(keyword) || kProducts.Holds(keyword);
}

template <class Element>
auto elementsOf(const std::vector<Element>& elements) {
    return [&](std::size_t index) { return std::make_optional(elements[index]); };
}

}  // namespace

oam_result PciPlugin::CreateBoard(const std::string& name) {
    kit::DbOpening object(name, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (auto failed = object.Failure()) return failed;
    if (auto failed = installBoardKeywords(object.Handle())) return failed;
    return object.Close();
}

oam_result PciPlugin::OpenObject(unsigned long handle, unsigned int mode) {
    const auto name = kit::readKeyword(handle, "Name").value_or("");
    const OpenedObject object = {.isPlugIn = kit::sameText(name, objectName_),
                                 .isWritable = (mode & OAM_OPEN_WRITE) != 0};
    if (object.isPlugIn) {
        TakeSettings(handle);
    } else if (object.isWritable) {
        // An imported or older board may lack some of them.
        const kit::ProviderMode provider(handle);
        if (auto failed = installBoardKeywords(handle)) return failed;
    }
    handles_.Set(handle, object);
    return OAM_SUCCESS;
}

oam_result PciPlugin::CloseObject(unsigned long handle) {
    const auto object = handles_.Remove(handle);
    if (!object.isWritable) return OAM_SUCCESS;
    if (!object.isPlugIn) return CloseBoard(handle);
    TakeSettings(handle);
    return OAM_SUCCESS;
}

oam_result PciPlugin::CloseBoard(unsigned long handle) {
    const auto settings = CurrentSettings();
    const kit::ProviderMode provider(handle);
    return followSlot(handle, settings->tree, boardAt(*settings, readLocation(handle)));
}

oam_result PciPlugin::SetKeyword(unsigned long handle, const std::string& keyword,
                                 std::string_view value) {
    if (handles_.Find(handle).isPlugIn) return ChangeSetting(handle, keyword, value);
    return kit::changeKeyword(handle, boardRule(keyword), keyword, value);
}

oam_result PciPlugin::ChangeSetting(unsigned long handle, const std::string& keyword,
                                    std::string_view value) {
    if (isComputed(keyword)) return OAMERR_ACCESS_DENIED;
    const auto rule = settingRule(keyword);
    if (auto failed = kit::changeKeyword(handle, rule ? &*rule : nullptr, keyword, value)) {
        return failed;
    }
    // A count that grew needs its elements, before the client sets them.
    const kit::ProviderMode provider(handle);
    std::vector<std::string> repairs;
    const auto failed = completeSettings(handle, &repairs);
    Tell(repairs);
    return failed;
}

oam_result PciPlugin::GetKeyword(unsigned long handle, const std::string& keyword, char* buffer,
                                 unsigned int size) {
    if (handles_.Find(handle).isPlugIn && isComputed(keyword)) {
        return kit::answerText(ComputedKeyword(keyword), buffer, size);
    }
    return _oamDbGetKeyword(handle, keyword.c_str(), buffer, size);
}

oam_result PciPlugin::GetQualifier(unsigned long handle, const std::string& keyword,
                                   const std::string& qualifier, char* buffer, unsigned int size) {
    if (handles_.Find(handle).isPlugIn && (keyword.empty() || isComputed(keyword))) {
        return kit::answerText(ComputedQualifier(keyword, qualifier), buffer, size);
    }
    return _oamDbGetQualifier(handle, keyword.c_str(), qualifier.c_str(), buffer, size);
}

std::optional<std::string> PciPlugin::ComputedKeyword(const std::string& keyword) const {
    if (kDetectedBoards.Holds(keyword)) {
        const auto boards = Detected();
        return kDetectedBoards.Value(keyword, boards->size(), elementsOf(*boards));
    }
    const auto products = productsOf(CurrentSettings()->matches);
    return kProducts.Value(keyword, products.size(), elementsOf(products));
}

std::optional<std::string> PciPlugin::ComputedQualifier(const std::string& keyword,
                                                        const std::string& qualifier) const {
    if (keyword.empty()) {
        return kit::keywordListQualifier({kDetectedBoards.Name(), kProducts.Name()}, qualifier);
    }
    if (kDetectedBoards.Holds(keyword)) {
        return kDetectedBoards.Qualifier(keyword, qualifier, Detected()->size());
    }
    return kProducts.Qualifier(keyword, qualifier, productsOf(CurrentSettings()->matches).size());
}

}  // namespace oam::pci

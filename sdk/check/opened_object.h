// One opening of an object through the service, as a client makes it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "oam/codes.h"

namespace oam::check {

class OpenedObject {
  public:
    OpenedObject(const std::string& name, unsigned int mode);
    ~OpenedObject() { (void)Close(); }
    OpenedObject(const OpenedObject&) = delete;
    OpenedObject& operator=(const OpenedObject&) = delete;

    oam_result Failure() const { return failure_; }
    unsigned long Handle() const { return handle_; }
    const std::string& Name() const { return name_; }
    oam_result Close();

    // What the module answers; nothing when it fails.
    std::optional<std::string> Get(const std::string& keyword) const;
    // Only what the module itself answers, without the service's defaults.
    std::optional<std::string> GetQualifier(const std::string& keyword,
                                            const std::string& qualifier) const;
    oam_result Set(const std::string& keyword, const std::string& value) const;

    // The names of the stored keywords, without their qualifiers.
    std::vector<std::string> Keywords() const;

  private:
    std::string name_;
    unsigned long handle_ = 0;
    oam_result failure_;
    bool isOpen_;
};

}  // namespace oam::check

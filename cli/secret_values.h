// What must not leave the host: values of keywords whose names say that they are a secret.
#pragma once

#include <string>
#include <string_view>

namespace oam {

// "Snmp.Community", "password", "ApiKey", ...; by the name alone, rather one too many.
bool IsSecretName(std::string_view keyword);

// A data file or export with every such value replaced by "(removed)". It need not be a sound one:
// what stands behind such a tag goes up to the next tag, or the end.
std::string WithoutSecrets(std::string_view content);

}  // namespace oam

#include "mirror/openapi.h"

#include <google/protobuf/descriptor.h>

#include <algorithm>
#include <set>

#include "mirror/routes.h"
#include "oam/v1/refusal.pb.h"

namespace oam::console {
namespace {

using google::protobuf::Descriptor;
using google::protobuf::FieldDescriptor;

constexpr const char* kSchemas = "#/components/schemas/";

Json reference(const std::string& name) { return {{"$ref", kSchemas + name}}; }

bool isOneOf(const Descriptor& type, const char* name) {
    return type.full_name() == std::string("google.protobuf.") + name;
}

Json enumSchema(const google::protobuf::EnumDescriptor& type) {
    Json values = Json::array();
    for (int i = 0; i < type.value_count(); ++i) values.push_back(EnumText(*type.value(i)));
    return {{"type", "string"}, {"enum", values}};
}

Json schemaOfOne(const FieldDescriptor& field) {
    switch (field.cpp_type()) {
        case FieldDescriptor::CPPTYPE_BOOL:
            return {{"type", "boolean"}};
        case FieldDescriptor::CPPTYPE_ENUM:
            return enumSchema(*field.enum_type());
        case FieldDescriptor::CPPTYPE_STRING:
            return field.type() == FieldDescriptor::TYPE_BYTES ? reference("Text")
                                                               : Json{{"type", "string"}};
        case FieldDescriptor::CPPTYPE_MESSAGE:
            if (isOneOf(*field.message_type(), "Timestamp"))
                return {{"type", "string"}, {"format", "date-time"}};
            if (isOneOf(*field.message_type(), "Duration")) return {{"type", "number"}};
            return reference(field.message_type()->name());
        default:
            return {{"type", "integer"}};
    }
}

Json schemaOf(const FieldDescriptor& field) {
    if (!field.is_repeated()) return schemaOfOne(field);
    return {{"type", "array"}, {"items", schemaOfOne(field)}};
}

class Describer {
  public:
    Json Describe() {
        Json paths = Json::object();
        for (const Route& route : Routes()) {
            std::string method = route.method;
            for (char& c : method) c = static_cast<char>(c - 'A' + 'a');
            paths["/api/v1" + std::string(route.path)][method] = Operation(route);
        }
        AddMessage(*v1::Refusal::descriptor());
        schemas_["Error"] = {
            {"type", "object"},
            {"properties",
             {{"error",
               {{"allOf",
                 {reference("Refusal"),
                  {{"type", "object"}, {"properties", {{"reason", {{"type", "string"}}}}}}}}}}}}};
        Json all;
        all["openapi"] = "3.1.0";
        all["info"] = {
            {"title", "oam.v1 over HTTP"},
            {"version", "1"},
            {"description",
             "A mirror of the daemon's interface. docs/console.md tells how to log in."}};
        all["paths"] = std::move(paths);
        all["components"]["securitySchemes"] = {
            {"bearer", {{"type", "http"}, {"scheme", "bearer"}}}};
        all["components"]["schemas"] = std::move(schemas_);
        all["security"] = {{{"bearer", Json::array()}}};
        return all;
    }

  private:
    Json Operation(const Route& route) {
        const auto& verb = route.Verb();
        const auto parts = route.Parts();
        Json operation;
        operation["operationId"] = std::string(route.service) + '.' + route.verb +
                                   (names_.insert(verb.full_name()).second ? "" : "ByName");
        operation["tags"] = {route.service};
        operation["x-role"] = route.role;
        Json parameters = Json::array();
        std::set<std::string> inPath(parts.begin(), parts.end());
        for (const std::string& part : parts)
            for (int i = 0; i < verb.input_type()->field_count(); ++i)
                if (const auto& field = *verb.input_type()->field(i); field.json_name() == part)
                    parameters.push_back({{"name", part},
                                          {"in", "path"},
                                          {"required", true},
                                          {"schema", {{"type", TypeInUrl(field)}}}});
        if (route.TakesQuery() || route.kind == RouteKind::kImport)
            AddQuery(*verb.input_type(), "", inPath, &parameters);
        operation["parameters"] = std::move(parameters);
        if (route.kind == RouteKind::kImport) {
            operation["requestBody"]["content"]["application/octet-stream"] = Json::object();
        } else if (!route.TakesQuery()) {
            AddMessage(*verb.input_type());
            operation["requestBody"]["content"]["application/json"]["schema"] =
                reference(verb.input_type()->name());
        }
        operation["responses"]["200"] = Answer(route);
        operation["responses"]["default"] = {
            {"description", "refused"},
            {"content", {{"application/json", {{"schema", reference("Error")}}}}}};
        return operation;
    }

    Json Answer(const Route& route) {
        Json answer = {{"description", "done"}};
        if (route.kind == RouteKind::kExport) {
            answer["content"]["application/octet-stream"] = Json::object();
            return answer;
        }
        AddMessage(*route.Verb().output_type());
        const char* const type =
            route.kind == RouteKind::kEvents ? "text/event-stream" : "application/json";
        answer["content"][type]["schema"] = reference(route.Verb().output_type()->name());
        return answer;
    }

    static std::string TypeInUrl(const FieldDescriptor& field) {
        switch (field.cpp_type()) {
            case FieldDescriptor::CPPTYPE_BOOL:
                return "boolean";
            case FieldDescriptor::CPPTYPE_STRING:
            case FieldDescriptor::CPPTYPE_ENUM:
                return "string";
            case FieldDescriptor::CPPTYPE_MESSAGE:
                return "number";  // a duration
            default:
                return "integer";
        }
    }

    static void AddQuery(const Descriptor& type, const std::string& above,
                         const std::set<std::string>& inPath, Json* parameters) {
        for (int i = 0; i < type.field_count(); ++i) {
            const FieldDescriptor& field = *type.field(i);
            const std::string name = above + field.json_name();
            const bool isMessage = field.cpp_type() == FieldDescriptor::CPPTYPE_MESSAGE;
            if (inPath.count(name) > 0 || name == "piece") continue;
            if (isMessage && !isOneOf(*field.message_type(), "Duration")) {
                AddQuery(*field.message_type(), name + '.', inPath, parameters);
                continue;
            }
            Json schema = {{"type", TypeInUrl(field)}};
            if (field.is_repeated()) schema = {{"type", "array"}, {"items", std::move(schema)}};
            parameters->push_back({{"name", name}, {"in", "query"}, {"schema", std::move(schema)}});
        }
    }

    void AddMessage(const Descriptor& type) {
        if (isOneOf(type, "Timestamp") || isOneOf(type, "Duration") ||
            schemas_.contains(type.name()))
            return;
        schemas_[type.name()] = nullptr;
        Json properties = Json::object();
        for (int i = 0; i < type.field_count(); ++i) {
            const FieldDescriptor& field = *type.field(i);
            properties[field.json_name()] = schemaOf(field);
            if (field.cpp_type() == FieldDescriptor::CPPTYPE_MESSAGE)
                AddMessage(*field.message_type());
        }
        schemas_[type.name()] = {{"type", "object"}, {"properties", std::move(properties)}};
    }

    std::set<std::string> names_;
    Json schemas_ = {
        {"Text",
         {{"description", "A name, value or text; an object when its bytes are not UTF-8."},
          {"oneOf",
           {{{"type", "string"}},
            {{"type", "object"},
             {"properties", {{"base64", {{"type", "string"}}}}},
             {"required", {"base64"}}}}}}}};
};

}  // namespace

Json OpenApi() { return Describer().Describe(); }

}  // namespace oam::console

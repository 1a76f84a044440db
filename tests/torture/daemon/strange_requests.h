// Requests that no sound client makes, for every method of the interface: bytes that are no
// message, messages cut short, and messages whose fields hold anything.
#pragma once

#include <grpcpp/support/byte_buffer.h>

#include <random>
#include <string>
#include <vector>

namespace google::protobuf {
class Message;
class MethodDescriptor;
}  // namespace google::protobuf

namespace oam::torture {

class StrangeRequests {
  public:
    // `names` of objects, among others.
    StrangeRequests(unsigned long seed, std::vector<std::string> names);

    struct Request {
        std::string method;  // "/oam.v1.Boards/GetBoard"
        bool isStream;       // its answers
        std::string bytes;
    };
    Request Next();

  private:
    std::string Text();
    std::uint64_t Number();
    void Fill(google::protobuf::Message* message, int depth);

    std::mt19937_64 random_;
    const std::vector<std::string> names_;
    std::vector<const google::protobuf::MethodDescriptor*> methods_;
};

}  // namespace oam::torture

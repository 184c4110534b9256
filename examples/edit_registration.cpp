// Registers a payload with a document that is made from its file and from what is only known at run
// time. Usage: edit_registration SERVER ID FILE

#include <TavoRemotingLib/HalcyrREST.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Brenmoor::MirrinFramework::Logger;
using Brenmoor::TavoRemotingLib::HalcyrREST;

/// Reads the record. The library's own words for a file that cannot be opened are of little use.
HalcyrREST::PayloadRegistration Read(const std::string& fileName) {
    try {
        return HalcyrREST::PayloadRegistration(fileName);
    } catch (const std::length_error&) {
        throw std::runtime_error("cannot open " + fileName);
    }
}

/// The document with the software's version in its interface. Of the list "interface" only the
/// first entry is read, and it alone is written.
std::string WithVersion(const std::string& document, const std::string& version) {
    HalcyrREST::PRInterface interface;
    interface.InitFromRegJSON(document); // stays blank if there is none
    interface.swVer = version;
    return interface.UpdateJSON(document);
}

/// The document with another list "hardware". The records have the members that the library knows;
/// others that an entry may have are lost when the list is written.
std::string WithCamera(const std::string& document) {
    std::vector<HalcyrREST::PRHardware> hardware;
    HalcyrREST::PRHardware::InitFromRegJSON(document, hardware);

    // Changed: what draws power through connector J3.
    for (HalcyrREST::PRHardware& entry : hardware) {
        if (entry.connector == "J3") {
            entry.power = 15;
            entry.hasPower = true; // or it is not written
        }
    }
    // Removed: a pump that is not aboard.
    hardware.erase(
        std::remove_if(hardware.begin(), hardware.end(),
                       [](const HalcyrREST::PRHardware& entry) { return entry.model == "Pump 2"; }),
        hardware.end());
    // Added. Members that stay empty are not written.
    HalcyrREST::PRHardware camera;
    camera.manufacturer = "Halden Instruments";
    camera.model = "Camera 4";
    camera.tty = "/dev/ttyS2";
    hardware.push_back(camera);

    return HalcyrREST::PRHardware::UpdateJSON(document, hardware);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: edit_registration SERVER ID FILE" << std::endl;
        return 2;
    }
    const std::string id = argv[2];
    const std::string fileName = argv[3];
    try {
        Logger logger(std::clog, 0);
        HalcyrREST client(argv[1], logger, /* verbose = */ false);

        HalcyrREST::PayloadRegistration record = Read(fileName);
        record.description += ", second unit";
        record.hostID = id + "-host";
        // The whole file again, with the record's members written over it.
        std::string document = client.GetPayloadRegistrationContent(fileName, record);
        document = WithVersion(document, "3.2.0");
        document = WithCamera(document);
        std::cout << document;

        client.RegisterPayloadWithContent(id, document, record.hostID);
        client.RegistrationComplete(id);
    } catch (const std::exception& e) {
        std::cerr << "edit_registration: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}

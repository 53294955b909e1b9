// What the commands show of a producer that behaves itself.
#include "tests/wild/suite.h"

namespace koro::test::wild
{

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = {
        {"list", "list", {0, {Says("wild0-camera"), Says("Wild camera")}}},
        {"list_json", "list --json", {0, {Says("\"wild0-camera\"")}}},
        {"doctor", "doctor", {0, {Says("1 usable camera")}}},
        {"info", "info wild0-camera", {0, {Says("W-wild0-camera")}}},
        {"grab", "grab wild0-camera --frames 4 --timeout 1000 --output FOLDER/pictures", {0, {Says("pictures +4\n")}}},
        {"grab_raw",
         "grab wild0-camera --frames 4 --timeout 1000 --format raw --output FOLDER/pictures",
         {0, {Says("pictures +4\n")}}},
        {"grab_none",
         "grab wild0-camera --frames 4 --timeout 1000 --format none",
         {0, {Says("frames +4\n"), NeverSays("pictures")}}},
        {"grab_json",
         "grab wild0-camera --frames 4 --timeout 1000 --json --output FOLDER/pictures",
         {0, {Says("\"state\":\"whole\""), Says("\"pictures\":4,")}}},
        {"grab_reconnect",
         "grab wild0-camera --frames 4 --timeout 1000 --reconnect --output FOLDER/pictures",
         {0, {Says("pictures +4\n")}}},
        {"chunks",
         "grab wild0-camera --frames 4 --timeout 1000 --chunks --output FOLDER/pictures",
         {6, {Warns("has no feature \"ChunkModeActive\"")}}},
        {"features", "features wild0-camera", {0, {Says("Width +rw +64 +8..64 by 8")}}},
        {"features_json", "features wild0-camera --json", {0, {Says("\"PixelFormat\"")}}},
        {"get", "get wild0-camera Width", {0, {Says("^64\n$")}}},
        {"set", "set wild0-camera Width=32", {0, {Says("^Width=32\n$")}}},
        {"set_of_interface", "set --interface wild0 ForcedAddress=0.0.0.7", {0, {Says("^ForcedAddress=0.0.0.7\n$")}}},
        {"set_of_system", "set --system PRODUCER StreamPacketSize=9000", {0, {Says("^StreamPacketSize=9000\n$")}}},
        {"run", "run wild0-camera AcquisitionStop", {0, {Says("AcquisitionStop is done")}}},
        {"read", "read wild0-camera 0x1000", {0, {Says("^0x40000000\n$")}}},
        {"write", "write wild0-camera 0x1000 20000000", {0, {Says("^4 bytes written\n$")}}},
        {"describe", "describe wild0-camera Width", {0, {Says("access +read and write")}}},
        {"xml", "xml wild0-camera", {0, {Says("<RegisterDescription ")}}},
        {"watch", "watch --changes 2 --duration 3000", {0, {Says("found +wild0:wild0-camera")}}},
        {"watch_feature", "watch wild0-camera Width --changes 1", {0, {Says("Width=64")}}},
        {"events", "events wild0-camera --duration 1", {6, {Warns("has no feature \"EventSelector\"")}}},
        {"settings_save", "settings save wild0-camera FOLDER/new", {0, {Says("5 values")}}},
        {"settings_save_all", "settings save wild0-camera FOLDER/new --all-writable", {0, {Says("10 values")}}},
        {"settings_load", "settings load wild0-camera FOLDER/saved", {0, {}}},
        {"settings_check", "settings check wild0-camera FOLDER/saved", {0, {Says("Width: 64 -> 32")}}},
        {"settings_diff", "settings diff wild0-camera FOLDER/saved", {7, {Says("Width")}}},
        {"files_list", "files list wild0-camera", {0, {Says("\nNotes +8 +8 +Read\n")}}},
        {"files_read", "files read wild0-camera Notes -", {0, {Says("^the file$")}}},
        {"files_write",
         "files write wild0-camera Notes FOLDER/image.bin",
         {1, {Warns("The file Notes cannot be written\\."), Warns("hint: It can be opened for Read")}}},
        {"files_delete", "files delete wild0-camera Notes", {1, {Warns("The file Notes cannot be deleted\\.")}}},
        {"firmware_info", "firmware info FOLDER/update.guf --for wild0-camera", {0, {Says("Better pictures")}}},
        {"firmware_update",
         "firmware update wild0-camera FOLDER/write.guf",
         {0, {Says("setting: "), Says("done in ")}}},
        {"firmware_upload",
         "firmware update wild0-camera FOLDER/update.guf",
         {1, {Says("uploading: "), Warns("koro: ")}}},
        {"firmware_pack",
         "firmware pack FOLDER/new.guf FOLDER/control.xml FOLDER/image.bin",
         {0, {Says("Better pictures"), NeverSays("koro: ")}}},
    };
    return commands;
}

} // namespace koro::test::wild

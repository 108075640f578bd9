#include "host/live/MosquittoLibrary.h"

#include <dlfcn.h>
#include <stdexcept>
#include <string>

namespace grouptracker {

namespace {

const char* const libraryFile = "libmosquitto.so.1";

template <typename Function>
void find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  if (function == nullptr) {
    throw std::runtime_error(std::string(libraryFile) + ": " + name + " is missing");
  }
}

MosquittoLibrary load() {
  void* const library = ::dlopen(libraryFile, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw std::runtime_error(std::string("a broker cannot be reached without the library ") +
                             libraryFile);
  }
  MosquittoLibrary all;
  find(library, "mosquitto_lib_init", all.libInit);
  find(library, "mosquitto_strerror", all.strerror);
  find(library, "mosquitto_connack_string", all.connackString);
  find(library, "mosquitto_new", all.make);
  find(library, "mosquitto_destroy", all.destroy);
  find(library, "mosquitto_threaded_set", all.threadedSet);
  find(library, "mosquitto_int_option", all.intOption);
  find(library, "mosquitto_max_inflight_messages_set", all.maxInflightMessagesSet);
  find(library, "mosquitto_connect_callback_set", all.connectCallbackSet);
  find(library, "mosquitto_disconnect_callback_set", all.disconnectCallbackSet);
  find(library, "mosquitto_message_callback_set", all.messageCallbackSet);
  find(library, "mosquitto_publish_callback_set", all.publishCallbackSet);
  find(library, "mosquitto_subscribe_callback_set", all.subscribeCallbackSet);
  find(library, "mosquitto_username_pw_set", all.usernamePwSet);
  find(library, "mosquitto_will_set", all.willSet);
  find(library, "mosquitto_tls_set", all.tlsSet);
  find(library, "mosquitto_connect_async", all.connectAsync);
  find(library, "mosquitto_reconnect_async", all.reconnectAsync);
  find(library, "mosquitto_disconnect", all.disconnect);
  find(library, "mosquitto_loop", all.loop);
  find(library, "mosquitto_subscribe", all.subscribe);
  find(library, "mosquitto_publish", all.publish);
  all.libInit();
  return all;
}

}  // namespace

const MosquittoLibrary& MosquittoLibrary::loaded() {
  static const MosquittoLibrary library = load();
  return library;
}

}  // namespace grouptracker

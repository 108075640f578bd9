#pragma once

#include <mosquitto.h>

namespace grouptracker {

/// The functions of the MQTT library under their names there, without "mosquitto_" and underscores.
/// It is loaded when somebody first talks to a broker: with the encryption that it stands on it
/// would take a good part of the start of every program that only reads files.
struct MosquittoLibrary {
  /// Throws `std::runtime_error` when the library is not there.
  static const MosquittoLibrary& loaded();

  decltype(&mosquitto_lib_init) libInit = nullptr;
  decltype(&mosquitto_strerror) strerror = nullptr;
  decltype(&mosquitto_connack_string) connackString = nullptr;
  decltype(&mosquitto_new) make = nullptr;  ///< "new" there
  decltype(&mosquitto_destroy) destroy = nullptr;
  decltype(&mosquitto_threaded_set) threadedSet = nullptr;
  decltype(&mosquitto_int_option) intOption = nullptr;
  decltype(&mosquitto_max_inflight_messages_set) maxInflightMessagesSet = nullptr;
  decltype(&mosquitto_connect_callback_set) connectCallbackSet = nullptr;
  decltype(&mosquitto_disconnect_callback_set) disconnectCallbackSet = nullptr;
  decltype(&mosquitto_message_callback_set) messageCallbackSet = nullptr;
  decltype(&mosquitto_publish_callback_set) publishCallbackSet = nullptr;
  decltype(&mosquitto_subscribe_callback_set) subscribeCallbackSet = nullptr;
  decltype(&mosquitto_username_pw_set) usernamePwSet = nullptr;
  decltype(&mosquitto_will_set) willSet = nullptr;
  decltype(&mosquitto_tls_set) tlsSet = nullptr;
  decltype(&mosquitto_connect_async) connectAsync = nullptr;
  decltype(&mosquitto_reconnect_async) reconnectAsync = nullptr;
  decltype(&mosquitto_disconnect) disconnect = nullptr;
  decltype(&mosquitto_loop) loop = nullptr;
  decltype(&mosquitto_subscribe) subscribe = nullptr;
  decltype(&mosquitto_publish) publish = nullptr;
};

}  // namespace grouptracker

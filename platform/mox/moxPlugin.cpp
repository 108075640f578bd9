#include <mox/moxPlugin.h>

moxPlugin::moxPlugin(QObject* parent) : QObject(parent) {}

moxPlugin::~moxPlugin() = default;

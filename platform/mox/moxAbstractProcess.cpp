#include <mox/moxAbstractProcess.h>

moxAbstractProcess::moxAbstractProcess(QObject* parent) : QObject(parent) {}

moxAbstractProcess::~moxAbstractProcess() = default;

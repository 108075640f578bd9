#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"

#include <mox/moxAbstractProcessFactory.h>
#include <mox/moxLogger.h>
#include <mox/moxPlugin.h>

#include <QPluginLoader>
#include <QScopedPointer>
#include <gtest/gtest.h>

namespace {

TEST(Plugin, BringsOneProcessTypeToTheFactory) {
  QPluginLoader loader(PLUGIN_FILE);
  auto* const plugin = qobject_cast<moxPlugin*>(loader.instance());
  ASSERT_NE(plugin, nullptr) << loader.errorString().toStdString();
  const QString type = "GroupTrackerProcessGroupTracker";
  EXPECT_EQ(plugin->name(), "GroupTrackerProcessGroupTrackerPlugin");
  EXPECT_EQ(plugin->types(), QStringList(type));

  const auto logged = [&] {
    testing::internal::CaptureStderr();
    EXPECT_TRUE(plugin->initialize());
    return testing::internal::GetCapturedStderr();
  };
  EXPECT_EQ(logged(), "");
  const auto& factory = moxAbstractProcessFactory::instance();
  EXPECT_EQ(factory.types("kelAbstractProcessGroupTracker"), QStringList(type));
  const QScopedPointer<moxAbstractProcess> process(factory.create(type));
  ASSERT_FALSE(process.isNull());
  EXPECT_EQ(process->identifier(), type);

  EXPECT_EQ(logged(), "[17] Unable to register GroupTrackerProcessGroupTracker type\n");
  moxLogger::instance().setLevel(18);
  EXPECT_EQ(logged(), "");
  moxLogger::instance().setLevel(0);
}

TEST(Plugin, ACopiedProcessKeepsWhatTheHostSet) {
  GroupTrackerProcessGroupTracker process;
  QList<QSharedPointer<kelDataActor>> actors;
  actors.append(QSharedPointer<kelDataActor>::create());
  process.setActors(actors);
  process.setSpecificParameters({{"diagnostics", false}});
  const GroupTrackerProcessGroupTracker copy(process);
  EXPECT_EQ(copy.actors(), actors);
  const moxAbstractProcess& same = process;
  process.copy(same);  // nothing to do, nothing to say
  EXPECT_EQ(process.actors(), actors);
}

}  // namespace

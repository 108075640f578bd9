#include "tests/support/base/Texts.h"
#include "tests/support/process/Printed.h"
#include "tests/support/process/ProcessDriver.h"
#include "tests/support/process/Scene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"
#include "tracker/tracking/Group.h"

#include <mox/moxAbstractProcessFactory.h>
#include <mox/moxLogger.h>
#include <mox/moxPlugin.h>

#include <QPluginLoader>
#include <QScopedPointer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

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
}

TEST(Plugin, NothingIsTakenOverFromItself) {
  GroupTrackerProcessGroupTracker process;
  const auto& same = process;
  testing::internal::CaptureStderr();
  process.copy(same);  // nothing to do, nothing to say
  process = same;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Plugin, TellsWhatIsWrongWithAParameterFileInsteadOfEndingTheHost) {
  const StaticsGuard guard;
  setTestParameters();
  const TempFolder folder;
  const std::string file = folder.path() / "p.txt";
  QPluginLoader loader(PLUGIN_FILE);
  const auto problem = [&](const std::string& text) {
    folder.write("p.txt", text);
    QString told = "not called";
    QMetaObject::invokeMethod(loader.instance(), "parameterProblem", Q_RETURN_ARG(QString, told),
                              Q_ARG(QString, QString::fromStdString(file)));
    return told.toStdString();
  };
  const std::string good = parameterText();
  EXPECT_EQ(problem(good), "");
  EXPECT_EQ(problem(good.substr(1)),
            "\"oherenceThreshold:\" stands where \"coherenceThreshold:\" is expected");
  EXPECT_EQ(problem(good.substr(0, good.find("distWeight:"))),
            "\"\" stands where \"distWeight:\" is expected");
  EXPECT_EQ(problem("coherenceThreshold: true"),
            "the value after \"coherenceThreshold:\" is missing or not of its type");
  using Process = GroupTrackerProcessGroupTracker;
  EXPECT_EQ(Process::parameterProblem("/nowhere"), "cannot be opened");
  EXPECT_EQ(Process::parameterProblem("/dev/zero"), "no regular file");
  EXPECT_EQ(parameterText(), good) << "the parameters in use stay as they are";
}

/// What `init()` of a process says on the log about parameters as they stand now, but for one.
std::string loggedByInit(GroupTrackerProcessGroupTracker& process, double coherenceThreshold) {
  const TempFolder folder;
  const double before = std::exchange(Group::coherenceThreshold, coherenceThreshold);
  process.setParameterFileName(folder.write("p.txt", parameterText()));
  Group::coherenceThreshold = before;
  process.setSpecificParameters({{"diagnostics", false}, {"mobileDump", false}});
  testing::internal::CaptureStderr();
  process.init();
  return testing::internal::GetCapturedStderr();
}

TEST(Plugin, SaysWhenAProcessChangesTheParametersOfOthers) {
  const StaticsGuard guard;
  setTestParameters();
  {
    GroupTrackerProcessGroupTracker first;
    GroupTrackerProcessGroupTracker same;
    GroupTrackerProcessGroupTracker other;
    EXPECT_EQ(loggedByInit(first, 5.0) + loggedByInit(same, 5.0), "");
    EXPECT_EQ(loggedByInit(other, 7.0),
              "[17] Parameters are shared by all processes, these change for the 2 before: "
              "coherenceThreshold:\n");
  }
  GroupTrackerProcessGroupTracker alone;
  EXPECT_EQ(loggedByInit(alone, 9.0), "") << "the others are gone";
}

/// The actors of a host that leaves things empty: an actor, the current mobile of another, and an
/// earlier mobile of each of the rest.
ProcessDriver::Actors withNulls(const ProcessDriver::Actors& actors) {
  const auto seenEarlier = actors[0]->getLinkedPhysicalObjectList().front();
  const auto lost = QSharedPointer<kelDataActor>::create();
  lost->addLinkedPhysicalObject(seenEarlier);
  lost->addLinkedPhysicalObject(QSharedPointer<kelDataLinkedPhysicalObject>::create(9, nullptr));
  ProcessDriver::Actors all{nullptr, lost};
  for (const auto& actor : actors) {
    const auto gapped = QSharedPointer<kelDataActor>::create();
    gapped->setIdent(actor->getIdent());
    gapped->setType(actor->getType());
    gapped->setBoundingBox3D(actor->getBoundingBox3D());
    gapped->addLinkedPhysicalObject({});
    for (const auto& mobile : actor->getLinkedPhysicalObjectList()) {
      gapped->addLinkedPhysicalObject(mobile);
    }
    all.append(gapped);
  }
  return all;
}

/// What a process prints and hands back of a pair that walks side by side.
std::string trackPair(bool addsNulls) {
  constexpr unsigned int frames = 6;
  Group::currentId = 0;
  Scene scene;
  scene.walk(1, 1, frames, {0, 0});
  scene.walk(2, 1, frames, {0, 1});
  ProcessDriver driver;
  printed([&] { driver.process().init(); });
  std::string text;
  for (unsigned int frame = 1; frame <= frames; ++frame) {
    const auto actors = scene.actors(frame);
    ProcessDriver::Actors groups;
    text += printed([&] { groups = driver.step(addsNulls ? withNulls(actors) : actors); });
    text += toText(groups);
  }
  return text;
}

TEST(Plugin, WhatIsNullIsPassedOverWithALineOnTheLog) {
  const StaticsGuard guard;
  setTestParameters();
  const std::string expected = trackPair(false);
  EXPECT_THAT(expected, testing::HasSubstr("NumberOfMobiles 2"));
  testing::internal::CaptureStderr();
  EXPECT_EQ(trackPair(true), expected);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::StartsWith("[17] Frame 1: 2 actors and 2 mobiles passed over\n"
                                  "[17] Frame 2: 2 actors and 2 mobiles passed over\n"));
}

TEST(Plugin, AProcessThatIsGivenNothingGoesOn) {
  const StaticsGuard guard;
  GroupTrackerProcessGroupTracker process;
  const std::string text = printed([&] {
    process.process();  // before init(), when all parameters are 0
    process.setActors({nullptr});
    process.process();
  });
  EXPECT_THAT(text, testing::HasSubstr("0 TPOs\n"));
}

}  // namespace

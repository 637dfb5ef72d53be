// lKestrinDb, the parameter data base of a test-bench analysis suite for rotating machinery. This
// header brings the whole public surface; hosts include nothing else.
//
//   CParameterLake::Lake().read(L"gearbox.par");   // the file
//   CQtParamInstance params;                       // the handle
//   if (params.ReadTablesFromCandidateLake()) {
//     params.ChannelName(3);                       // and the answers
//   }
#pragma once

#include "controls/ClavisComboBox.h"
#include "controls/ClavisListCtrl.h"
#include "controls/KestrinCtrl.h"
#include "controls/KestrinDialog.h"
#include "controls/KestrinRangeSelectCtrl.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "frame/QtParamServer.h"
#include "frame/Version.h"
#include "frame/strings/DialogTemplates.h"
#include "frame/strings/ModuleStrings.h"
#include "inspect/Difference.h"
#include "inspect/ParameterCheck.h"
#include "inspect/TableCatalogue.h"
#include "inspect/Tidy.h"
#include "interfaces/sea/PrWin.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/signal/MeasuringUnit.h"
#include "interfaces/text/File.h"
#include "interfaces/text/Text.h"
#include "interfaces/windows/ComboBoxX.h"
#include "interfaces/windows/Dialog3d.h"
#include "interfaces/windows/TextView.h"
#include "interfaces/windows/Wnd.h"
#include "interfaces/windows/XListCtrl.h"
#include "keys/IndexRecords.h"
#include "keys/QIdx8Set.h"
#include "lake/Lake.h"
#include "queries/Grex.h"
#include "spec/OrderInterpreter.h"
#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "tables/QParamBaseTable.h"
#include "tables/QTableManager.h"
#include "tables/RowText.h"
#include "tables/TableFile.h"
#include "trigger/TriggerStore.h"

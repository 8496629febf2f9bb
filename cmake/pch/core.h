#pragma once
#include <QtCore/QtCore>
#include <QtSql/QtSql>

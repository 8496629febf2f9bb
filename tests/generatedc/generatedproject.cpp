#include "tests/generatedc/generatedproject.h"

#include "generators/canopen/objdictgenerator.h"
#include "generators/canopen/objdictgeneratorv4.h"
#include "generators/canopen/vobjdictgenerator.h"
#include "generators/canopen/vobjdictgeneratorv4.h"
#include "generators/define/codefinegenerator.h"
#include "generators/define/gendefinegenerator.h"
#include "generators/headers/indicationgenerator.h"
#include "generators/headers/indicationgeneratorv4.h"
#include "generators/headers/indicesgenerator.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <memory>

namespace {

constexpr int compilerTimeout = 60000;

template <typename V4, typename V3, typename... Arguments>
std::unique_ptr<V3> makeGenerator(bool isV4, Arguments... arguments)
{
    if (isV4)
        return std::make_unique<V4>(arguments...);
    return std::make_unique<V3>(arguments...);
}

} // namespace

GeneratedProject::GeneratedProject(const ProjectCase &projectCase, bool isV4)
    : m_case(projectCase), m_isV4(isV4), m_project(isV4)
{
    projectCase.build(m_project);
}

void GeneratedProject::write(const QString &file, const QString &text) const
{
    QFile out(path(file));
    if (out.open(QIODevice::WriteOnly))
        out.write(text.toUtf8());
}

QString GeneratedProject::text(const QString &file) const
{
    QFile in(path(file));
    return in.open(QIODevice::ReadOnly) ? QString::fromUtf8(in.readAll()) : QString();
}

void GeneratedProject::run(AbstractGenerator &generator)
{
    generator.setStore(&m_project.store());
    generator.setOutputFolder(m_folder.path());
    generator.setProjectName("evil */ \" name\\");
    generator.doJob();
    m_errorText += generator.errorString();
}

void GeneratedProject::generateServerOnly()
{
    const auto generator = makeGenerator<ObjDictGeneratorV4, ObjDictGenerator>(m_isV4, false);
    generator->setServerOnly(true);
    run(*generator);
    const auto define = makeGenerator<GenDefineGenerator, CoDefineGenerator>(m_isV4);
    define->setProtocols(true, false);
    run(*define);
    write("app.h", QString());
    m_isLineForm = text("gen_objdict.c").contains("UNSIGNED8 canLine");
}

void GeneratedProject::generate()
{
    ObjectDataBase &store = m_project.store();
    QString declarations = "#ifndef APP_H\n#define APP_H 1\n";
    for (const QString &line : QString(m_case.variables).split('\n', Qt::SkipEmptyParts))
        declarations += "extern " + line + '\n';
    write("app.h", declarations + "#endif\n");
    const bool isCompact = store.getGeneralSetting("compact_array_description") == "1";
    run(*makeGenerator<ObjDictGeneratorV4, ObjDictGenerator>(m_isV4, isCompact));
    const auto virtualGenerator = makeGenerator<VobjDictGeneratorV4, VobjDictGenerator>(m_isV4);
    virtualGenerator->setStore(&store);
    virtualGenerator->setVirtualObjects(
        store.getGeneralSetting("special_virtual_objects").toInt() != 0);
    m_hasVirtual = virtualGenerator->hasContent();
    if (m_hasVirtual)
        run(*virtualGenerator);
    run(*makeGenerator<GenDefineGenerator, CoDefineGenerator>(m_isV4));
    run(*makeGenerator<indicationgeneratorv4, indicationgenerator>(m_isV4));
    IndicesGenerator indices;
    indices.setLines(store.getLines());
    run(indices);
    m_isLineForm = text("gen_objdict.c").contains("coCanOpenStackInit_common");
}

QStringList GeneratedProject::arguments(bool isVirtual) const
{
    const QString stub = QLatin1String(QUILLFORGE_SOURCE_DIR "/tests/stackstub");
    QStringList arguments = {"-std=c99",      "-Wall", "-Wextra",
                             "-Werror",       "-c",    "-I",
                             m_folder.path(), "-I",    stub + (m_isV4 ? "/v4" : "/v3")};
    // The structure of all tables has no place for 24 bit signed numbers.
    if (text("gen_objdict.c").contains("_i24["))
        arguments << "-Wno-unused-variable"
                  << "-Wno-unused-const-variable";
    if (m_isLineForm)
        arguments << "-DSTACKSTUB_MULTI_LINE";
    if (isVirtual)
        arguments << "-DSTACKSTUB_VIRTUAL";
    const QString objdict = text("gen_objdict.c");
    if (objdict.contains("gen_user.h"))
        arguments << "-DSTACKSTUB_USER";
    if (objdict.contains("userOverwriteStringDefaultvalues"))
        arguments << "-DSTACKSTUB_STRING_DEFAULTS";
    if (objdict.contains("userOverwriteCobIdSettings"))
        arguments << "-DSTACKSTUB_OVERWRITE";
    return arguments;
}

std::unique_ptr<QProcess> GeneratedProject::start(const QString &program,
                                                  const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    process->start(program, arguments);
    return process;
}

QString GeneratedProject::finish(QProcess &process, QString *output)
{
    if (!process.waitForFinished(compilerTimeout))
        return process.program() + " does not run";
    if (output)
        *output = QString::fromUtf8(process.readAllStandardOutput());
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return errors.isEmpty() ? process.program() + " fails" : errors;
    return {};
}

QString GeneratedProject::execute(const QString &program, const QStringList &arguments,
                                  QString *output)
{
    return finish(*start(program, arguments), output);
}

QString GeneratedProject::compile(const QString &compiler)
{
    QString application = "#include <gen_define.h>\n#include <co_canopen.h>\n#include <stdio.h>\n";
    application += "#include <gen_indication.h>\n";
    application += m_case.variables;
    application += m_case.functions;
    application += "void stackstubPrintApplication(void);\n"
                   "void stackstubPrintApplication(void)\n{\n";
    if (QString(m_case.variables).contains("shortText"))
        application += "    printf(\"texts %s %.4s %.4s\\n\", texts[0], shortText, exactText);\n";
    write("application.c", application + "}\n#include <gen_indices.h>\n#include <gen_indices.h>\n");

    const QString stub = QLatin1String(QUILLFORGE_SOURCE_DIR "/tests/stackstub");
    QStringList sources = {path("gen_objdict.c"), path("application.c"), stub + "/stackstub.c",
                           stub + "/stackstub_main.c"};
    if (m_hasVirtual)
        sources.append(path("gen_vobjdict.c"));
    // All at once: a compiler uses one processor.
    std::vector<std::unique_ptr<QProcess>> compilers;
    for (const QString &source : std::as_const(sources)) {
        const QString object = path(QFileInfo(source).baseName() + ".o");
        compilers.push_back(start(compiler, arguments(source.contains("gen_vobjdict")) +
                                                QStringList{"-o", object, source}));
    }
    QString errors;
    for (const auto &process : compilers)
        errors += finish(*process);
    return errors;
}

QString GeneratedProject::compileDictionary(const QString &compiler) const
{
    return execute(compiler,
                   arguments(false) + QStringList{"-o", path("server.o"), path("gen_objdict.c")});
}

QString GeneratedProject::run(QString &output)
{
    const QString program = path("program");
    QStringList objects;
    for (const char *name : {"gen_objdict", "application", "stackstub", "stackstub_main"})
        objects.append(path(QString("%1.o").arg(QLatin1String(name))));
    const QString errors = execute("gcc", QStringList{"-o", program} + objects);
    return errors.isEmpty() ? execute(program, {}, &output) : errors;
}

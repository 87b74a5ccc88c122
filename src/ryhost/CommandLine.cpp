#include "ryhost/CommandLine.h"

#include "ryhost/batch/BatchVerbs.h"

static QString whyUnknown(const QString &option)
{
    if (BatchVerbs::names().contains(option))
        return QStringLiteral("%1 is for runs without a window: ryhost --batch FILE %1 ...").arg(option);
    const QStringList others{QStringLiteral("--batch"), QStringLiteral("--help"), QStringLiteral("--version")};
    return QStringLiteral("there is no option %1%2").arg(option, BatchVerbs::didYouMean(option, others));
}

static CommandLine wrong(const QString &error)
{
    CommandLine line;
    line.mode = CommandLine::Wrong;
    line.error = error;
    return line;
}

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine line;
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        line.mode = Help;
        return line;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        line.mode = Version;
        return line;
    }
    if (arguments.contains(QStringLiteral("--batch"))) {
        line.mode = Batch;
        line.batchArguments = arguments;
        line.isVerbose = line.batchArguments.removeAll(QLatin1String(BatchVerbs::Verbose)) > 0;
        return line;
    }
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--")) {
            line.files += arguments.mid(i + 1);
            break;
        } else if (argument.startsWith(QLatin1Char('-')) && argument.size() > 1) {
            return wrong(whyUnknown(argument));
        } else {
            line.files.append(argument);
        }
    }
    return line;
}

QString CommandLine::helpText()
{
    return QStringLiteral(
        "ryhost [FILE...]                  opens a window; further files are merged into the first\n"
        "ryhost --batch FILE... [verb...]  works without a window; verbs run from left to right and may repeat; each "
        "file\n"
        "                                  gets a fresh scene and the same verbs; - is standard input\n"
        "\n"
        "  --unit F                        centimetres in one unit of the file; first, or before --merge\n"
        "  --merge FILE                    adds another file\n"
        "  --select NAME[,NAME...]         by name or path (hip/abdomen), the last is primary; \"none\" for none\n"
        "  --property NODE:NAME=VALUE      sets one value, one undo step\n"
        "  --pose NODE:xrot=30             the same for a pose control\n"
        "  --clip FIGURE/NAME [--time T]   shows a clip, by name or number from 1, at so many seconds; the next edit "
        "puts\n"
        "                                  it away, and so does \"none\"\n"
        "  --run CLASS                     runs an action, such as RyJEAlignNodeAction\n"
        "  --script FILE                   runs a script (.rsx)\n"
        "  --set OBJECTNAME=VALUE          after --run or --script: fills a field of its dialog before it is "
        "accepted;\n"
        "                                  DIALOG/OBJECTNAME for a dialog after the first\n"
        "  --answer TITLE=BUTTON           after --run or --script: answers a message box; others get their default "
        "button\n"
        "  --undo, --redo                  one step\n"
        "  --save OUT [--joints-only]      by ending .glb, .gltf or .obj; may be the input; with --joints-only clips\n"
        "                                  stay as they are; - is standard output\n"
        "  --save-to DIR [--joints-only]   the same under the file's own name; the folder is made\n"
        "  --screenshot PNG [--view front|side|top|perspective] [--size 1280x900]\n"
        "  --dump [FILE], --report [FILE]  the scene as text, a report as JSON; without a file to standard output\n"
        "  --format ENDING                 after --batch -, --merge - or --save -: glb, gltf or obj; for what comes in "
        "also\n"
        "                                  fbx, dae or bvh\n"
        "  --json                          anywhere: what became of each file, as one JSON document on standard "
        "output\n"
        "  --verbose                       anywhere: prints what the toolkit says by itself too\n"
        "\n"
        "Examples\n"
        "  ryhost character.glb\n"
        "  ryhost --batch in.glb --select lForearm --screenshot before.png --view perspective\n"
        "  ryhost --batch in.glb --property lForearm:endX=61.5 --save out.glb --report\n"
        "  ryhost --batch a.glb b.glb --run RyJEAlignNodeAction --save-to fixed --json\n"
        "  ryhost --batch in.glb --select lForearm --run RyJEAlignNodeAction --save out.glb\n"
        "  ryhost --batch in.glb --select lForearm --run RyJEReparentBoneAction --set NodeDlgTree=chest \\\n"
        "         --answer \"Reparenting Warning=Ok\" --save out.glb\n"
        "\n"
        "Messages go to standard error. Exit codes: 0 done, 1 a file was refused, 2 wrong use, 3 an action was "
        "refused,\n"
        "4 something could not be written, 5 a script could not be read or failed. Several files: the highest of "
        "theirs.\n"
        "Environment: RYHOST_PLUGIN_PATH, RYHOST_HOME, RYHOST_SETTINGS_DIR. ryhost --version tells the version.\n");
}

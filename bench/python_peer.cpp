#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "python_peer.h"

#include <limits>

namespace
{

/// Prints an error that is pending.
PythonObject Checked(PyObject* object)
{
    if (!object)
        PyErr_Print();
    return PythonObject(object);
}

/// Isolated: neither the environment nor the user's own packages change what is compared with.
bool Start()
{
    PyConfig config;
    PyConfig_InitIsolatedConfig(&config);
    const bool started =
        // It finds its modules beside this program, not beside the first `python3` in the path.
        !PyStatus_Exception(
            PyConfig_SetBytesString(&config, &config.program_name, ZVMATH_PYTHON_EXECUTABLE)) &&
        !PyStatus_Exception(Py_InitializeFromConfig(&config));
    PyConfig_Clear(&config);
    return started;
}

/// New names for the execution of code; none if there is no interpreter.
PythonObject NewNames()
{
    static const bool started = Start();
    if (!started)
        return PythonObject();
    PythonObject names = Checked(PyDict_New());
    PyDict_SetItemString(names.Get(), "__builtins__", PyEval_GetBuiltins());
    return names;
}

PyObject* Run(const std::string& code, int start, const PythonObject& names)
{
    return PyRun_String(code.c_str(), start, names.Get(), names.Get());
}

}  // namespace

void PythonRelease::operator()(PyObject* object) const
{
    Py_DECREF(object);
}

double PythonObject::Number() const
{
    const double value = object ? PyFloat_AsDouble(object.get()) : -1.0;
    if (object && !PyErr_Occurred())
        return value;
    PyErr_Clear();
    return std::numeric_limits<double>::quiet_NaN();
}

std::vector<double> PythonObject::Numbers(const std::string& expression) const
{
    std::vector<double> numbers;
    const PythonObject names = NewNames();
    if (!object || !names.Get())
        return numbers;
    PyDict_SetItemString(names.Get(), "result", object.get());
    const PythonObject list = Checked(Run("list(" + expression + ")", Py_eval_input, names));
    if (list.Get())
        for (Py_ssize_t i = 0; i < PyList_Size(list.Get()); ++i) {
            numbers.push_back(PyFloat_AsDouble(PyList_GetItem(list.Get(), i)));
            if (PyErr_Occurred())
                PyErr_Print();
        }
    return numbers;
}

PythonFunction::PythonFunction(const std::string& imports, const std::vector<PythonArray>& arrays,
                               const std::string& expression)
{
    const PythonObject names = NewNames();
    if (!names.Get() ||
        !Checked(Run("import math\nimport numpy as np\n" + imports, Py_file_input, names)).Get())
        return;
    for (const PythonArray& array : arrays) {
        const size_t size = array.rows * (array.columns == 0 ? 1 : array.columns);
        char* const bytes = const_cast<char*>(reinterpret_cast<const char*>(array.values));
        const PythonObject memory = Checked(PyMemoryView_FromMemory(
            bytes, static_cast<Py_ssize_t>(size * sizeof(double)), PyBUF_READ));
        PyDict_SetItemString(names.Get(), array.name.c_str(), memory.Get());
        std::string view = array.name + " = np.frombuffer(" + array.name + ")";
        if (array.columns != 0)
            view += ".reshape((-1, " + std::to_string(array.columns) + "), order='F')";
        if (!Checked(Run(view, Py_file_input, names)).Get())
            return;
    }
    function = Checked(Run("lambda: " + expression, Py_eval_input, names));
}

PythonObject PythonFunction::operator()() const
{
    return function.Get() ? Checked(PyObject_CallNoArgs(function.Get())) : PythonObject();
}

std::string PythonVersion(const std::string& module)
{
    const PythonObject names = NewNames();
    if (!names.Get())
        return "";
    const PythonObject version(
        Run("__import__('" + module + "').__version__", Py_eval_input, names));
    const char* const text = version.Get() ? PyUnicode_AsUTF8(version.Get()) : nullptr;
    PyErr_Clear();
    return text ? text : "";
}

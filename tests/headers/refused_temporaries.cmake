# An acquisition takes a stream that lives on, and no temporary one.
function(compile name body expected)
    file(WRITE ${WORK_DIR}/${name}.cpp "#include <koro/koro.hpp>\n"
        "void Grab(koro::DataStream stream, koro::DataStreamDescriptor descriptor, koro::NodeMap camera)\n"
        "{\n    (void)stream;\n    (void)descriptor;\n    ${body};\n}\n")
    execute_process(COMMAND ${CXX} -std=c++17 -fsyntax-only -I${INCLUDE} ${WORK_DIR}/${name}.cpp
        ERROR_VARIABLE errors RESULT_VARIABLE status)
    if(expected AND NOT status EQUAL 0)
        message(FATAL_ERROR "does not compile: ${body}\n${errors}")
    elseif(NOT expected AND status EQUAL 0)
        message(FATAL_ERROR "compiles: ${body}")
    endif()
endfunction()
compile(kept_stream "koro::Acquisition acquisition(stream, camera)" TRUE)
compile(viewed_stream "koro::Acquisition acquisition(koro::DataStreamView(stream), camera)" TRUE)
compile(temporary_stream "koro::Acquisition acquisition(descriptor.OpenDataStream(), camera)" FALSE)
compile(moved_stream "koro::Acquisition acquisition(std::move(stream), camera)" FALSE)

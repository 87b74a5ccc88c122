# The judge of the files we write: shares no code with what it judges.
add_library(ry_evaluator STATIC)
foreach(part GltfDifferences GltfEvaluator GltfFileReader GltfModel)
  target_sources(ry_evaluator PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${part}.cpp ${CMAKE_CURRENT_LIST_DIR}/${part}.h)
endforeach()
set_target_properties(ry_evaluator PROPERTIES AUTOMOC OFF)
target_include_directories(ry_evaluator PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(ry_evaluator PRIVATE ry_compile_options PUBLIC Eigen3::Eigen nlohmann_json::nlohmann_json)
ry_test(evaluator LIBS ry_evaluator ry_test_core)

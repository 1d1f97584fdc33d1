# Installs the independent client into the build folder and runs the check there. Variables: NODE, NPM, QUELLE (this
# folder), ORDNER (where to work), PROGRAMM (tws-simulator).
file(COPY ${QUELLE}/package.json ${QUELLE}/package-lock.json ${QUELLE}/pruefe.js DESTINATION ${ORDNER})
if(NOT EXISTS ${ORDNER}/node_modules/.package-lock.json)
  execute_process(COMMAND ${NPM} ci --no-audit --no-fund --ignore-scripts WORKING_DIRECTORY ${ORDNER}
    RESULT_VARIABLE ergebnis)
  if(NOT ergebnis EQUAL 0)
    message(FATAL_ERROR "the client's packages couldn't be installed")
  endif()
endif()
execute_process(COMMAND ${NODE} pruefe.js ${PROGRAMM} WORKING_DIRECTORY ${ORDNER} RESULT_VARIABLE ergebnis)
if(NOT ergebnis EQUAL 0)
  message(FATAL_ERROR "the client found faults")
endif()
